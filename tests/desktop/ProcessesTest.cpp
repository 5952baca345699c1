// The page of processes under churn, and what it can be told by keyboard.
#include "monitor/Processes.h"
#include "desktop/WindowFixture.h"
#include "desktop/processes/ProcessDetails.h"
#include "desktop/processes/ProcessModel.h"
#include "desktop/widgets/TableView.h"
#include "support/Child.h"

#include <QAbstractItemModelTester>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>
#include <random>
#include <set>
#include <sys/wait.h>

namespace quarn::testing {
namespace {

using namespace desktop;

/// Processes that come, go, move and find new parents.
class Churn {
public:
    explicit Churn(size_t count) : list_(count) {
        for (size_t i = 0; i < count; ++i) list_[i] = fresh(static_cast<int64_t>(i + 1));
    }
    Snapshot next() {
        for (auto& process : list_)
            if (random_() % 8 == 0) process.cpuPercent = static_cast<double>(random_() % 1000) / 10;
        const size_t changes = list_.size() / 50 + 1;
        for (size_t i = 0; i < changes && list_.size() > 2; ++i)
            list_.erase(list_.begin() + static_cast<std::ptrdiff_t>(random_() % list_.size()));
        std::set<int64_t> alive{0};
        for (auto& process : list_) {
            if (!alive.contains(process.ppid)) process.ppid = 0;
            alive.insert(process.pid);
        }
        for (size_t i = 0; i < changes; ++i) list_.push_back(fresh(list_.back().pid + 1));
        Snapshot snapshot;
        snapshot.processes = list_;
        snapshot.processGeneration = snapshot.generation = ++generation_;
        return snapshot;
    }
    const ProcInfo& some() { return list_[list_.size() / 2]; }

private:
    ProcInfo fresh(int64_t pid) {
        ProcInfo info = processOf(pid, "p" + std::to_string(pid % 97));
        info.ppid = pid > 4 ? static_cast<int64_t>(random_() % static_cast<size_t>(pid - 1)) : 0;
        info.memBytes = random_() % 1'000'000'000;
        info.startTimeMicros = 1 + static_cast<uint64_t>(pid);
        return info;
    }
    std::mt19937 random_{3};
    std::vector<ProcInfo> list_;
    int64_t generation_ = 0;
};

TEST(ProcessModel, StaysRightUnderChurn) {
    for (const size_t count : {200u, 20'000u}) {
        Churn churn(count);
        ProcessModel model;
        // The tester looks at everything after every signal; of 20,000 rows that is enough a few times.
        const int rounds = count > 1000 ? 3 : 120;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        TableView view("churn");
        view.show(model, static_cast<int>(ProcessField::cpu), Qt::DescendingOrder);
        double now = 0;
        const auto tick = [&] { model.take(churn.next(), Known(), {.keepExited = 4}, ++now); };
        tick();
        const RowKey key = keyOf(churn.some());
        const QPersistentModelIndex held = model.find(key);
        view.setCurrentIndex(held);
        for (int round = 0; round < rounds; ++round) {
            tick();
            switch (round % 10) {
            case 3: model.setShape(ProcessView::Shape::tree); break;
            case 4: view.expandAll(); break;
            case 5: model.sort(static_cast<int>(ProcessField::name), Qt::AscendingOrder); break;
            case 7: model.setSearch("p1"); break;
            case 8: model.setSearch(""); break;
            case 9:
                model.setShape(ProcessView::Shape::list);
                model.sort(static_cast<int>(ProcessField::cpu), Qt::DescendingOrder);
                break;
            default: break;
            }
            if (held.isValid()) {
                EXPECT_EQ(keyOf(*model.row(held).process), key);
                EXPECT_EQ(view.currentIndex(), held);
            }
        }
        EXPECT_EQ(resets.count(), 0);
    }
}

struct ProcessesPage : ::testing::Test {
    void SetUp() override {
        fixture_.open("processes", {1200, 800});
        show(SampleMachine{}.at(3));
        QApplication::setActiveWindow(&window_);
        view().setFocus();
    }
    void show(const Snapshot& snapshot) { window_.refresh(snapshot, SampleMachine::known()); }
    TableView& view() { return named<TableView>(window_, "Processes"); }
    ProcessDetails& details() { return *window_.findChild<ProcessDetails*>(); }
    QString nameAt(int row) { return view().model()->index(row, 0).data().toString(); }

    WindowFixture fixture_{LiveHistory()};
    MainWindow& window_ = fixture_.window();
};

TEST_F(ProcessesPage, SearchOpensWithWhatOthersLookFor) {
    window_.open("processes", "postgres");
    ASSERT_GT(view().model()->rowCount(), 0);
    for (int row = 0; row < view().model()->rowCount(); ++row) EXPECT_EQ(nameAt(row), "postgres");
    window_.open("processes", "no such thing");
    EXPECT_EQ(view().model()->rowCount(), 0);
}

TEST_F(ProcessesPage, ReturnOpensTheDetailsOfTheRowAndEscClosesThem) {
    view().setCurrentIndex(view().model()->index(0, 0));
    EXPECT_TRUE(details().isHidden());
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_FALSE(details().isHidden());
    EXPECT_EQ(details().pid(), view().model()->index(0, 1).data().toLongLong());
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_TRUE(details().isHidden());
}

TEST_F(ProcessesPage, BranchesThatWereClosedStayClosed) {
    for (auto* button : window_.findChildren<QToolButton*>())
        if (button->text() == "Tree") button->setChecked(true);
    view().sortByColumn(static_cast<int>(ProcessField::pid), Qt::AscendingOrder);
    QModelIndex parent;
    for (int row = 0; !parent.isValid(); ++row)
        if (const auto index = view().model()->index(row, 0); view().model()->hasChildren(index))
            parent = index;
    ASSERT_TRUE(view().isExpanded(parent));
    view().collapse(parent);
    const QPersistentModelIndex held = parent;
    show(SampleMachine{}.at(4));
    EXPECT_FALSE(view().isExpanded(held));
    for (auto* button : window_.findChildren<QToolButton*>())
        if (button->text() == "Tree") button->setChecked(false);
}

TEST_F(ProcessesPage, DeleteAsksAndThenEndsTheProcess) {
    Child child;
    ProcInfo info = processOf(child.pid(), "child of the test");
    info.startTimeMicros = sysinfo::platform::processStartMicros(sysinfo::SystemRoot::host(), child.pid());
    Snapshot snapshot = SampleMachine{}.at(3);
    snapshot.processes = {info};
    snapshot.processGeneration += 5;
    show(snapshot);
    window_.open("processes", "child"); // the others have exited and are still listed
    view().setCurrentIndex(view().model()->index(0, 0));
    QTest::keyClick(&view(), Qt::Key_Delete);
    auto* question = window_.findChild<QMessageBox*>();
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(question->text().contains("child of the test"));
    EXPECT_EQ(question->defaultButton(), question->button(QMessageBox::Cancel))
        << "Return must not end anything";
    answer(*question, QMessageBox::AcceptRole);
    int status = 0;
    EXPECT_EQ(::waitpid(child.pid(), &status, 0), child.pid());
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

} // namespace
} // namespace quarn::testing
