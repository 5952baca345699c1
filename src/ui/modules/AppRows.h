#pragma once

#include "monitor/ResourceAppList.h"
#include "ui/modules/Known.h"
#include "ui/modules/ReadingStyle.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarn {

class Prefs;

/// What lists of applications show and are sorted by.
enum class AppField : uint8_t {
    name,
    cpu,
    memory,
    disk,    ///< bytes a second, read and written together
    network, ///< bytes a second, received and sent together
    energy,  ///< watts
    processes,
    threads,
};
inline constexpr size_t appFieldCount = static_cast<size_t>(AppField::threads) + 1;

/// How a person wants the figures of applications written.
struct AppStyle {
    ReadingStyle reading{};
    size_t wholeMachine = 0; ///< cores, when CPU use is a share of the whole machine; 0 for shares of a core

    bool operator==(const AppStyle&) const = default;
};
/// What the settings say now, on a machine of so many cores.
AppStyle appStyle(const Prefs& prefs, size_t cores);

/// What a person chose to see of the applications.
struct AppView {
    enum class Direction { ascending, descending };

    AppField sortedBy = AppField::cpu;
    Direction direction = Direction::descending;
    std::string search{}; ///< each of its words must occur; empty shows all
};

/// One row of the list: an application, or a process of the one above.
struct AppRow {
    const ResourceAppList::App* app = nullptr;
    const ResourceAppList::Process* process = nullptr; ///< nullptr for the application itself
    int parent = -1;                                   ///< number of the application's row
    bool isMatch = true; ///< false for an application that is shown for its processes

    const ResourceUsage& usage() const { return process ? process->usage : app->usage; }
    std::string_view name() const { return process ? process->name.view() : app->name.view(); }
};

/// The key of an application in the history: its bundle, or the name of its programs.
std::string_view historyKey(const ResourceAppList::App& app);
/// What the list of processes must be searched for to show those of an application: their program or the
/// folder of their programs, or else the busiest one's name.
std::string processSearch(const ResourceAppList::App& app);

/// From lists of applications to the rows of a tree: which ones are wanted, in which order. Belongs to one
/// thread.
class AppRows {
public:
    /// Takes the latest list. `known` is of the same time.
    void take(std::shared_ptr<const ResourceAppList> list, const Known& known);

    /// The rows from top to bottom, each application followed by its processes. Valid until the next call of
    /// any member; what they point to until the second `take` from now.
    std::span<const AppRow> rows(const AppView& view);
    /// How many applications of the last view match, or have processes that do.
    size_t matching() const { return matching_; }
    /// How many there are.
    size_t applications() const { return latest_ ? latest_->apps.size() : 0; }

    /// Whether any application tells this field; what none tells is not worth a column.
    bool tells(AppField field) const { return tells_[static_cast<size_t>(field)]; }
    /// The greatest figure of an application, for bars that compare; 0 when none is known.
    double largest(AppField field) const { return largest_[static_cast<size_t>(field)]; }
    const Known& known() const { return known_; }

private:
    std::shared_ptr<const ResourceAppList> latest_;
    std::shared_ptr<const ResourceAppList> former_; ///< rows of the time before point into it
    Known known_;
    std::array<bool, appFieldCount> tells_{};
    std::array<double, appFieldCount> largest_{};
    size_t matching_ = 0;
    std::vector<AppRow> rows_;
};

/// A figure of a row, CPU in percent of a core; NaN when it is not known or there is none.
double appNumber(const AppRow& row, AppField field, const Known& known);
/// A field for people, "—" when it is not known, empty where it makes no sense.
std::string shownAppField(const AppRow& row, AppField field, const Known& known, const AppStyle& style);
/// Why a field of this row is not known, in a sentence; empty when it is.
std::string_view whyUnknown(const AppRow& row, AppField field, const Known& known);
/// Why a field is not known of any application on this machine.
std::string_view whyUntold(AppField field);

/// The `limit` applications that have most of a figure, the largest first; those of which it is not known
/// come last.
std::vector<const ResourceAppList::App*> topApps(const ResourceAppList& list, AppField field,
                                                 const Known& known, size_t limit);

/// "52 applications with 180 processes; Firefox uses most CPU, 0.9 of 8 cores".
std::string appSentence(const ResourceAppList& list, const Known& known, size_t cores);

} // namespace quarn
