#include "desktop/connections/ConnectionModel.h"

#include "desktop/Text.h"
#include "ui/modules/Format.h"

#include <QFont>
#include <array>

namespace quarn::desktop {

namespace {

using Align = TableColumn::Align;
using Shown = TableColumn::Shown;

/// In the order of ConnectionKey.
const std::array<TableColumn, 8> connectionColumns{{
    {"process", "Process", "", Align::text, 11, Shown::always},
    {"pid", "PID", "The number of the process", Align::figure, 6, Shown::whenRoom},
    {"proto", "Protocol", "", Align::text, 7, Shown::whenRoom},
    {"local", "Local address", "Its own end of the connection; * is every address of this machine",
     Align::text, 13, Shown::usually, Qt::AscendingOrder, TableColumn::Width::grows},
    {"localPort", "Port", "The port of its own end", Align::figure, 5},
    {"remote", "Remote address", "The other end of the connection", Align::text, 15, Shown::usually,
     Qt::AscendingOrder, TableColumn::Width::grows},
    {"remotePort", "Port", "The port of the other end", Align::figure, 5},
    {"state", "State", "", Align::text, 21},
}};

constexpr std::string_view everyAddress = "*";

/// What stands for values that differ within a group.
std::string severalText(const ConnectionRow& row, ConnectionKey key) {
    std::string count = std::to_string(row.distinct[static_cast<size_t>(key)]);
    switch (key) {
    case ConnectionKey::process: return count + " programs";
    case ConnectionKey::pid: return count;
    case ConnectionKey::proto: return "both";
    case ConnectionKey::local:
    case ConnectionKey::remote: return count + " addresses";
    case ConnectionKey::localPort:
    case ConnectionKey::remotePort: return count + " ports";
    case ConnectionKey::state: break;
    }
    return std::string(ConnectionDestination::mixed);
}

bool isMixed(const ConnectionRow& row, ConnectionKey key) {
    return row.distinct[static_cast<size_t>(key)] > 1;
}

std::string textOf(const ConnectionRow& row, ConnectionKey key) {
    if (isMixed(row, key)) return severalText(row, key);
    const Connection& c = row.shown;
    switch (key) {
    case ConnectionKey::process:
        return row.isGroup() && c.processName.empty() ? "Not known" : format::orUnknown(c.processName);
    case ConnectionKey::pid: return c.pid < 0 ? std::string(format::unknown) : std::to_string(c.pid);
    case ConnectionKey::proto: return c.proto;
    case ConnectionKey::local: return c.local.empty() ? std::string(everyAddress) : c.local;
    case ConnectionKey::localPort: return format::orUnknown(c.localPort);
    case ConnectionKey::remote: return c.hasPeer() ? c.remote : std::string(format::unknown);
    case ConnectionKey::remotePort: return format::orUnknown(c.remotePort);
    case ConnectionKey::state:
        return c.state.empty() ? std::string(format::unknown) : ConnectionPresentation::stateText(c.state);
    }
    return {};
}

/// Why a cell holds no value; empty when it does.
const char* whyNone(const Connection& c, ConnectionKey key) {
    const bool ofProcess = key == ConnectionKey::process || key == ConnectionKey::pid;
    if (ofProcess && c.pid == -1) return "Of another user, of the system, or closing. Needs the helper.";
    const bool ofPeer = key == ConnectionKey::remote || key == ConnectionKey::remotePort;
    if (ofPeer && !c.hasPeer()) return "It has no peer.";
    if (key == ConnectionKey::state && c.state.empty()) return "UDP knows no states.";
    if (key == ConnectionKey::local && (c.local.empty() || c.local == everyAddress))
        return "Every address of this machine.";
    return "";
}

} // namespace

void ConnectionModel::setLead(ConnectionKey key) { lead_ = key; }

void ConnectionModel::show(ConnectionRows rows) {
    latest_ = std::move(rows.rows);
    std::vector<Entry> entries;
    entries.reserve(latest_.size());
    for (const ConnectionRow& row : latest_) entries.push_back({RowKey::of(row.key), row.parent});
    arrange(entries);
}

bool ConnectionModel::take(size_t slot, size_t entry) {
    if (shown_.size() <= slot) shown_.resize(slot + 1);
    const ConnectionRow& latest = latest_[entry];
    ConnectionRow& shown = shown_[slot];
    if (shown == latest) return false;
    shown = latest;
    return true;
}

const TableColumn& ConnectionModel::column(int section) const {
    return connectionColumns[static_cast<size_t>(section)];
}

int ConnectionModel::columnCount(const QModelIndex&) const {
    return static_cast<int>(connectionColumns.size());
}

void ConnectionModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= columnCount()) return;
    using Direction = ConnectionView::Direction;
    Q_EMIT sortWanted(static_cast<ConnectionKey>(column),
                      order == Qt::DescendingOrder ? Direction::descending : Direction::ascending);
}

QVariant ConnectionModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const ConnectionRow& row = shown_[slot(index)];
    const auto key = static_cast<ConnectionKey>(index.column());
    switch (role) {
    case Qt::DisplayRole: {
        const QString text = toQt(textOf(row, key));
        return row.isGroup() && key == lead_ ? text + " (" + QString::number(row.members) + ")" : text;
    }
    case Qt::TextAlignmentRole: return headerData(index.column(), Qt::Horizontal, role);
    case Qt::ToolTipRole: {
        if (row.isGroup() && key == ConnectionKey::state) return toQt(row.states);
        const char* why = whyNone(row.shown, key);
        return *why ? QVariant(say(why)) : QVariant();
    }
    case TableRole::tone:
        if (key != ConnectionKey::state || isMixed(row, key) || row.shown.state.empty()) return {};
        return static_cast<int>(ConnectionPresentation::tone(row.shown.state));
    case Qt::FontRole: {
        if (!row.isGroup() || key != lead_) return {};
        QFont font;
        font.setWeight(QFont::DemiBold);
        return font;
    }
    case TableRole::dim: return isMixed(row, key) || key == ConnectionKey::proto || key == ConnectionKey::pid;
    default: return {};
    }
}

} // namespace quarn::desktop
