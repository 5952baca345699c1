// The page of connections over real sockets of this process.
#include "desktop/WindowFixture.h"
#include "desktop/widgets/TableView.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QLineEdit>
#include <QTcpServer>
#include <QTcpSocket>
#include <unistd.h>

namespace quarn::testing {
namespace {

using namespace desktop;

struct ConnectionsPage : ::testing::Test {
    void SetUp() override {
        ASSERT_TRUE(server_.listen(QHostAddress::LocalHost));
        fixture_.open("connections");
    }
    TableView& view() { return named<TableView>(window_, "Connections"); }
    QString port() const { return QString::number(server_.serverPort()); }
    void search(const QString& text) { window_.open("connections", text); }
    /// The texts of a column, from the top down, members of groups after their group.
    QStringList texts(int column, const QModelIndex& parent = {}) {
        QStringList all;
        for (int row = 0; row < view().model()->rowCount(parent); ++row) {
            all.append(view().model()->index(row, column, parent).data().toString());
            all.append(texts(column, view().model()->index(row, 0, parent)));
        }
        return all;
    }
    void choose(const QString& box, const QString& text) {
        named<QComboBox>(window_, box).setCurrentText(text);
    }
    bool eventually(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 20'000); }

    QTcpServer server_;
    WindowFixture fixture_{LiveHistory()};
    MainWindow& window_ = fixture_.window();
};

constexpr int pidColumn = 1, localPortColumn = 4, stateColumn = 7;

TEST_F(ConnectionsPage, SelectionStaysWithItsSocketWhileGroupsForm) {
    search(port());
    // With its owner, which the first reading may miss while other threads open files.
    ASSERT_TRUE(eventually([&] { return texts(pidColumn) == QStringList{QString::number(::getpid())}; }));
    QAbstractItemModelTester tester(view().model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    view().setCurrentIndex(view().model()->index(0, 0));
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, server_.serverPort());
    ASSERT_TRUE(eventually([&] { return server_.hasPendingConnections(); }));
    // The listener, both ends of the connection, and their group; read by the page's own cadence.
    ASSERT_TRUE(eventually([&] { return texts(localPortColumn).size() == 4; }));
    const QModelIndex current = view().currentIndex();
    EXPECT_EQ(current.siblingAtColumn(stateColumn).data(), "listening (LISTEN)")
        << (texts(stateColumn) + texts(pidColumn) + texts(localPortColumn)).join(", ").toStdString();
    EXPECT_TRUE(current.parent().isValid());
    EXPECT_TRUE(view().isExpanded(current.parent())) << "a selected row must not vanish in a closed group";

    choose("Grouping", "Not grouped");
    ASSERT_TRUE(eventually([&] { return texts(localPortColumn).size() == 3; }));
    EXPECT_EQ(view().currentIndex().siblingAtColumn(stateColumn).data(), "listening (LISTEN)");
    choose("Where the other end is", "Listening");
    ASSERT_TRUE(eventually([&] { return texts(localPortColumn).size() == 1; }));
    choose("Protocol", "UDP");
    ASSERT_TRUE(eventually([&] { return view().model()->rowCount() == 0; }));
    choose("Protocol", "TCP and UDP");
    choose("Where the other end is", "All sockets");
    choose("Grouping", "By process");
}

} // namespace
} // namespace quarn::testing
