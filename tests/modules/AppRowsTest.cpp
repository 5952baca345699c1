#include "ui/modules/AppRows.h"

namespace quarn {
namespace {

using App = ResourceAppList::App;
using Process = ResourceAppList::Process;

Process member(int64_t pid, const char* name, const char* path, double cpu) {
    Process result{pid, name, path, true, {}};
    result.usage.cpuPercent = cpu;
    result.usage.memBytes = 1 << 20;
    result.usage.known = {.measured = true, .disk = true};
    return result;
}

App app(const char* name, const char* bundle, std::vector<Process> processes) {
    App result;
    result.name = name;
    if (*bundle) result.bundle = bundle;
    for (const auto& each : processes) result.usage += each.usage;
    result.processCount = static_cast<int64_t>(processes.size());
    result.processes = std::move(processes);
    return result;
}

std::shared_ptr<const ResourceAppList> machine() {
    ResourceAppList list;
    list.apps = {app("Firefox", "/menus/firefox.desktop",
                     {member(10, "firefox", "/usr/lib/firefox/firefox", 30),
                      member(11, "Web Content", "/usr/lib/firefox/content", 50)}),
                 app("Mail", "/menus/mail.desktop", {member(20, "mail", "/usr/bin/mail", 5)}),
                 app("bash", "", {member(30, "bash", "/usr/bin/bash", 0)})};
    Process denied{40, "login", {}, false, {}};
    list.apps.push_back(app("login", "", {denied}));
    return std::make_shared<const ResourceAppList>(std::move(list));
}

std::string shown(AppRows& rows, const AppView& view) {
    std::string text;
    for (const AppRow& row : rows.rows(view)) {
        if (!text.empty()) text += '|';
        if (row.process) text += '>';
        if (!row.isMatch) text += '~';
        text += row.name();
    }
    return text;
}

TEST(AppRows, SortSearchAndKeepProcessesWithTheirApplication) {
    AppRows rows;
    rows.take(machine(), {});
    using Direction = AppView::Direction;
    const struct {
        const char* what;
        AppView view;
        const char* expected;
        size_t matching;
    } cases[]{
        {"the busiest first, what is not known last",
         {},
         "Firefox|>Web Content|>firefox|Mail|>mail|bash|>bash|login|>login",
         4},
        {"what is not known stays last",
         {.direction = Direction::ascending},
         "bash|>bash|Mail|>mail|Firefox|>firefox|>Web Content|login|>login",
         4},
        {"by name",
         {.sortedBy = AppField::name, .direction = Direction::ascending},
         "bash|>bash|Firefox|>firefox|>Web Content|login|>login|Mail|>mail",
         4},
        {"by the count of processes",
         {.sortedBy = AppField::processes},
         "Firefox|>firefox|>Web Content|bash|>bash|login|>login|Mail|>mail",
         4},
        {"an application with all its processes", {.search = "FIREFOX"}, "Firefox|>Web Content|>firefox", 1},
        {"only a process of it", {.search = "content"}, "~Firefox|>Web Content", 1},
        {"words of both", {.search = "firefox content"}, "~Firefox|>Web Content", 1},
        {"a number", {.search = "20"}, "~Mail|>mail", 1},
        {"nothing", {.search = "emacs"}, "", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(shown(rows, c.view), c.expected) << c.what;
        EXPECT_EQ(rows.matching(), c.matching) << c.what;
    }
}

TEST(AppRows, TellWhatIsKnownAndWhyNot) {
    AppRows rows;
    rows.take(machine(), {});
    EXPECT_TRUE(rows.tells(AppField::cpu));
    EXPECT_TRUE(rows.tells(AppField::disk));
    EXPECT_FALSE(rows.tells(AppField::network));
    EXPECT_FALSE(rows.tells(AppField::energy));
    EXPECT_DOUBLE_EQ(rows.largest(AppField::cpu), 80);

    const auto list = machine();
    const AppRow firefox{&list->apps[0]}, login{&list->apps[3]};
    const AppRow content{&list->apps[0], &list->apps[0].processes[1], 0};
    const AppStyle ofACore, ofFour{.wholeMachine = 4};
    Known noRates;
    noRates.processRates = false;
    const struct {
        const char* what;
        const AppRow& row;
        AppField field;
        Known known;
        const AppStyle& style;
        const char* expected;
        bool hasReason;
    } cases[]{
        {"the sum", firefox, AppField::cpu, {}, ofACore, "80.0", false},
        {"of the machine", firefox, AppField::cpu, {}, ofFour, "20.0", false},
        {"before two samples", firefox, AppField::cpu, noRates, ofACore, "—", true},
        {"memory needs no second sample", firefox, AppField::memory, noRates, ofACore, "2.00 MiB", false},
        {"never a zero for what nobody counts", firefox, AppField::network, {}, ofACore, "—", true},
        {"nor for what is denied", login, AppField::memory, {}, ofACore, "—", true},
        {"a process has no count", content, AppField::processes, {}, ofACore, "", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(shownAppField(c.row, c.field, c.known, c.style), c.expected) << c.what;
        EXPECT_EQ(!whyUnknown(c.row, c.field, c.known).empty(), c.hasReason) << c.what;
    }
}

TEST(AppRows, LeadToTheirProcessesAndTheirHistory) {
    const struct {
        App app;
        const char *search, *key;
    } cases[]{
        {app("A", "/menus/a.desktop", {member(1, "a", "/opt/a b/run", 1), member(2, "a", "/opt/a b/run", 1)}),
         "/opt/a b/run", "/menus/a.desktop"},
        {app("B", "b.service",
             {member(1, "b", "/usr/lib/b/one", 1), member(2, "two", "/usr/lib/b/helpers/two", 1)}),
         "/usr/lib/b/", "b.service"},
        {app("C", "c.service", {member(1, "c", "/usr/bin/c", 1), member(2, "sh", "/usr/bin/sh", 1)}), "c",
         "c.service"},
        {app("d", "", {member(1, "d", "", 1)}), "d", "d"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(processSearch(c.app), c.search) << c.app.name.view();
        EXPECT_EQ(historyKey(c.app), c.key) << c.app.name.view();
    }
}

TEST(AppRows, TheSentenceNamesTheBusiest) {
    EXPECT_EQ(appSentence(*machine(), {}, 4),
              "4 applications with 5 processes; Firefox uses most CPU, 0.80 of 4 cores");
    Known noRates;
    noRates.processRates = false;
    EXPECT_EQ(appSentence(*machine(), noRates, 4), "4 applications with 5 processes");
    ResourceAppList idle;
    idle.apps = {app("bash", "", {member(30, "bash", "/usr/bin/bash", 0)})};
    EXPECT_EQ(appSentence(idle, {}, 1), "1 application with 1 process; all of them rest");
}

} // namespace
} // namespace quarn
