// The page of applications: in place under change, and the ways from it.
#include "desktop/WindowFixture.h"
#include "desktop/applications/AppDetails.h"
#include "desktop/applications/AppModel.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/HistoryChart.h"
#include "desktop/widgets/PageSearch.h"
#include "desktop/widgets/TableView.h"
#include "support/TempRoot.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QSignalSpy>

namespace quarn::testing {
namespace {

using namespace desktop;

ResourceAppList::App app(const char* name, double cpu, std::vector<int64_t> pids) {
    ResourceAppList::App app;
    app.name = name;
    app.usage.cpuPercent = cpu;
    app.usage.known.measured = true;
    app.processCount = static_cast<int64_t>(pids.size());
    for (const int64_t pid : pids) app.processes.push_back({pid, name, {}, true, app.usage});
    return app;
}

TEST(AppModel, KeepsItsRowsWhileListsComeAndGo) {
    AppModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    TableView view("apps", TableView::Shape::tree);
    view.show(model, static_cast<int>(AppField::cpu), Qt::DescendingOrder);
    const auto take = [&](std::vector<ResourceAppList::App> apps) {
        ResourceAppList list;
        list.apps = std::move(apps);
        model.take(std::make_shared<const ResourceAppList>(std::move(list)), {}, {});
    };
    take({app("web", 50, {1, 2}), app("mail", 10, {3})});
    const QPersistentModelIndex mail = model.index(1, 0), process = model.index(0, 0, model.index(1, 0));
    view.expand(mail);
    view.setCurrentIndex(process);
    take({app("web", 5, {1, 2}), app("mail", 20, {3, 4}), app("new", 1, {5})});
    EXPECT_EQ(mail.row(), 0) << "busier than the other now";
    EXPECT_TRUE(view.isExpanded(mail));
    EXPECT_EQ(view.currentIndex(), process);
    EXPECT_EQ(model.row(process).process->pid, 3);
    take({app("web", 5, {1, 2, 3}), app("mail", 20, {4})});
    EXPECT_EQ(process.parent().data(), "web") << "the process went to another application";
    take({});
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(resets.count(), 0);
}

struct ApplicationsPage : ::testing::Test {
    ApplicationsPage() {
        SampleMachine::capture(root_);
        fixture_.open("applications", {1200, 800});
        fixture_.show(SampleMachine{}.at(30));
        EXPECT_TRUE(QTest::qWaitFor([&] { return view().model()->rowCount() > 0; }));
        QApplication::setActiveWindow(&window_);
        view().setFocus();
    }
    TableView& view() { return *window_.findChild<AppDetails*>()->parent()->findChild<TableView*>(); }
    AppDetails& details() { return *window_.findChild<AppDetails*>(); }
    QModelIndex row(const QString& name) {
        const auto* model = view().model();
        const auto found = model->match(model->index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly);
        EXPECT_FALSE(found.isEmpty()) << name.toStdString();
        return found.value(0);
    }
    bool isShown(AppField field) { return !view().header()->isSectionHidden(static_cast<int>(field)); }

    TempRoot root_;
    WindowFixture fixture_{LiveHistory(), root_.root()};
    MainWindow& window_ = fixture_.window();
};

TEST_F(ApplicationsPage, ShowsWhatTheMachineCanTell) {
    EXPECT_EQ(row("Firefox ESR").siblingAtColumn(static_cast<int>(AppField::processes)).data(), "16")
        << "with those of another name";
    EXPECT_TRUE(isShown(AppField::disk));
    EXPECT_FALSE(isShown(AppField::network)) << "nobody counts traffic here";
    EXPECT_FALSE(isShown(AppField::energy));
    Snapshot metered = SampleMachine{}.at(31);
    std::vector<ProcInfo> processes(metered.processes.begin(), metered.processes.end());
    processes.front().watts = 1.5;
    metered.processes = processes;
    fixture_.show(metered);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isShown(AppField::energy); })) << "now one tells";
}

TEST_F(ApplicationsPage, LeadsToProcessesAndHistory) {
    view().setCurrentIndex(row("Firefox ESR"));
    EXPECT_TRUE(details().isHidden());
    QTest::keyClick(&view(), Qt::Key_Return);
    ASSERT_TRUE(details().isVisible());
    QStringList reasons;
    for (auto* label : details().findChild<FactTable*>()->findChildren<QLabel*>())
        if (label->text() == QString::fromUtf8("—")) reasons.append(label->toolTip());
    EXPECT_EQ(reasons.size(), 3) << "received, sent, power";
    EXPECT_FALSE(reasons.contains(QString())) << "each says why it is not known";

    auto& past = *details().findChild<HistoryChart*>();
    EXPECT_TRUE(past.isHidden());
    const auto now = std::chrono::system_clock::now();
    for (const int secondsAgo : {2, 1})
        fixture_.records().live().addApps(
            now - std::chrono::seconds(secondsAgo),
            std::vector{AppActivity{"/usr/share/applications/firefox-esr.desktop", 5, {250'000'000}}});
    fixture_.show(SampleMachine{}.at(31));
    EXPECT_TRUE(QTest::qWaitFor([&] { return past.isVisible(); })) << "the last half hour";

    Q_EMIT details().processesWanted();
    EXPECT_EQ(window_.currentPage(), "processes");
    QStringList searched;
    for (auto* field : window_.findChildren<PageSearch*>()) searched.append(field->text());
    EXPECT_TRUE(searched.contains("/usr/lib/firefox-esr/firefox-esr")) << searched.join("|").toStdString();
    Q_EMIT details().historyWanted();
    EXPECT_EQ(window_.currentPage(), "history");
    window_.open("applications");
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_TRUE(details().isHidden());
}

} // namespace
} // namespace quarn::testing
