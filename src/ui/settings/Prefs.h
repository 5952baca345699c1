#pragma once

#include "ui/settings/Pref.h"

namespace quarn {

/// What the settings of older versions are brought over from; replaced in tests.
struct MigrationSources {
    std::filesystem::path formerFile; ///< where an older version kept its settings; empty for none
    std::string systemLanguage = "en";

    /// Those of this user.
    static MigrationSources ofThisUser();
};

/// The one typed front of the user's settings, and their table: each row is a key, its default, its meaning
/// and what a person may set it to. A key that is missing or of the wrong type reads as the default.
///
/// Reading and writing go straight to the store, from any thread.
class Prefs final : public SettingGroup {
public:
    /// Brings older settings up to date; when there is nothing to do, and when that fails (which is logged),
    /// the file is not touched. The store must outlive this.
    explicit Prefs(SettingsStore& store, const MigrationSources& sources = {});

    /// Those of this user.
    static Prefs& shared();

    Setting<bool> fahrenheit{*this, "fahrenheit", false, "Show temperatures in degrees Fahrenheit."};
    Setting<bool> networkInBits{*this, "networkInBits", false, "Show network rates in bits per second."};
    Setting<bool> appCPUWholeMac{
        *this, "appCPUWholeMac", false,
        "Show the CPU use of an app as a share of the whole machine, not of one core."};
    Setting<int64_t> menuBarItem{
        *this,
        "menuBarItem",
        0,
        "The compact status item: 0 for none, 1 to 7 for cpu, memory, gpu, temperature, "
        "network, disk, power.",
        {0, 7}};
    Setting<int64_t> keepExited{
        *this, "keepExited", 8, "How many seconds an exited process stays in the list.", {0, 3600}};
    Setting<bool> alwaysAdmin{*this, "alwaysAdmin", false,
                              "Ask for the password and run as administrator on every launch."};
    Setting<std::string> languageCode{*this, "languageCode", "en", "The language of the interface."};
    Setting<bool> alertsEnabled{*this, "alertsEnabled", true, "Watch the alert thresholds."};
    Setting<bool> alertNotifications{*this, "alertNotifications", true,
                                     "Show a notification for each alert."};
    Setting<bool> alertSound{*this, "alertSound", false, "Play a sound for each alert."};
    Setting<int64_t> alertTempC{*this,
                                "alertTempC",
                                95,
                                "Alert when the hottest sensor is above this many degrees Celsius.",
                                {1, 200}};
    Setting<int64_t> alertCPUPercent{
        *this, "alertCPUPercent", 85, "Alert when total CPU use stays above this many percent.", {1, 100}};
    Setting<int64_t> alertSwapGB{
        *this, "alertSwapGB", 8, "Alert when more than this many GB of swap are in use.", {1, 100'000}};
    Setting<int64_t> alertFreeSpacePercent{*this,
                                           "alertFreeSpacePercent",
                                           10,
                                           "Alert when less than this share of the system disk is free.",
                                           {1, 100}};
    Setting<int64_t> alertBatteryPercent{*this,
                                         "alertBatteryPercent",
                                         15,
                                         "Alert when the battery in use is below this many percent.",
                                         {1, 100}};
    Setting<int64_t> alertProcessCPU{
        *this,
        "alertProcessCPU",
        0,
        "Alert when one process uses more than this many percent of a core; 0 is off.",
        {0, 1'000'000}};
    Setting<HistoryRange> historyRange{*this, "historyRange", HistoryRange::oneMinute,
                                       "The span of the live graphs."};
    Setting<TopAppsRange> topAppsRange{*this, "topAppsRange", TopAppsRange::day,
                                       "The window of the ranking of apps."};
    Setting<bool> crossfadeValues{*this, "crossfadeValues", false, "Cross-fade changed values."};
    Setting<bool> flashChanges{*this, "flashChanges", true, "Briefly highlight changed values."};
    Setting<bool> showExited{*this, "showExited", true, "Show exited processes for a while."};
    Setting<int64_t> startPage{
        *this, "startPage", 0, "The page shown at launch, counted from 0 in the list of pages.", {0, 1000}};
    Setting<SidebarLayout> sidebarLayout{
        *this, "sidebarLayout", SidebarLayout(),
        "The order of the sidebar's pages; behind a semicolon the hidden ones."};
    Setting<std::vector<std::string>> menuBarDetailed{*this,
                                                      "menuBarDetailed",
                                                      {},
                                                      "The modules shown in detailed form in the menu bar.",
                                                      {.choices = moduleTexts}};
    Setting<double> menuBarSpanSeconds{
        *this, "menuBarSpanSeconds", 60.0, "The span of the menu bar's small graphs in seconds.", {1, 3600}};
    Setting<int64_t> menuBarStyle{
        *this, "menuBarStyle", 2, "What a menu-bar module shows: 0 the value, 1 the graph, 2 both.", {0, 2}};
    Setting<std::vector<std::string>> widgets{
        *this, "widgets", {}, "The floating widgets that are open.", {.choices = moduleTexts}};
    Setting<double> widgetOpacity{*this, "widgetOpacity", 0.92, "The opacity of floating widgets.", {0.1, 1}};
    Setting<bool> widgetsOnTop{*this, "widgetsOnTop", true, "Keep floating widgets above other windows."};
    Setting<bool> hotkeyEnabled{*this, "hotkeyEnabled", true, "Show the window with a global shortcut."};
    Setting<int64_t> hotkeyCombo{
        *this,
        "hotkeyCombo",
        0,
        "The shortcut: 0 Ctrl+Alt+Q, 1 Super+Shift+Q, 2 Ctrl+Shift+Escape, 3 Super+Escape.",
        {0, static_cast<double>(hotkeyChoices().size() - 1)}};
    Setting<bool> keepRunning{*this, "keepRunning", true, "Keep running after the window was closed."};
    Setting<bool> showInDock{*this, "showInDock", true,
                             "Always show the icon in the dock, not only while the window is open."};
    Setting<bool> openWindowAtLaunch{*this, "openWindowAtLaunch", true, "Open the main window at launch."};
    Setting<double> backgroundInterval{
        *this, "backgroundInterval", 1.0, "Seconds between two samples while no window is shown.", {1, 3600}};
    Setting<bool> saveMetricsHistory{*this, "saveMetricsHistory", true, "Record the long-term history."};
    Setting<bool> autoUpdateCheck{*this, "autoUpdateCheck", true, "Check for updates automatically."};
    Setting<double> lastUpdateCheck{*this,
                                    "lastUpdateCheck",
                                    0.0,
                                    "When updates were checked last, in seconds since 2001-01-01 UTC.",
                                    {0}};
    Setting<std::string> skippedUpdate{*this, "skippedUpdate", "", "The version that was skipped."};
    Setting<bool> rememberPage{*this, "rememberPage", true, "Reopen the last page at launch."};
    Setting<std::string> samplingProfile{*this,
                                         "samplingProfile",
                                         "normal",
                                         "How often the machine is sampled.",
                                         {.choices = samplingProfileTexts}};
    Setting<AppTheme> appTheme{*this, "appTheme", AppTheme::system,
                               "The colours: those of the desktop, light or dark."};

    /// The modules of the menu bar in their order, each once: the compact one, then the detailed ones.
    std::vector<std::string> menuBarModules() const;
    /// The global shortcut; none when it is off or the stored number is no choice.
    std::optional<HotkeyShortcut> hotkey() const;
};

} // namespace quarn
