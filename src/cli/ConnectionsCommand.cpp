#include "cli/ConnectionsCommand.h"

#include "HelperKit/SocketRecords.h"
#include "cli/Command.h"
#include "cli/Fields.h"
#include "cli/JsonWriter.h"
#include "cli/Output.h"
#include "core/Scan.h"
#include "core/SocketList.h"
#include "inventory/ConnectionPresentation.h"

#include <optional>
#include <stdexcept>

namespace quarn::cli {

namespace {

using Sockets = std::span<const sysinfo::platform::KernelSocket* const>;

/// Makes the row of each socket that the options let through, one at a time.
template <class Take>
void eachRow(Sockets sockets, const ConnectionsOptions& options, Take take) {
    for (const auto* socket : sockets) {
        const auto row = ConnectionPresentation::connection(toRecord(sysinfo::flatSocket(*socket)), {});
        if (ConnectionPresentation::matches(row, options.scope, options.protocol, options.search)) take(row);
    }
}

void write(JsonWriter& json, std::string_view name, std::optional<std::string_view> text) {
    json.key(name);
    text ? json.string(*text) : json.null();
}

void write(JsonWriter& json, std::string_view name, std::optional<int64_t> number) {
    json.key(name);
    number ? json.number(*number) : json.null();
}

void write(JsonWriter& json, const Connection& row) {
    json.beginObject();
    write(json, "proto", std::string_view(row.proto));
    write(json, "local", unlessEmpty(row.local));
    write(json, "localPort", scutil::toNumber<int64_t>(row.localPort));
    write(json, "remote", row.hasPeer() ? std::optional<std::string_view>(row.remote) : std::nullopt);
    write(json, "remotePort", scutil::toNumber<int64_t>(row.remotePort));
    write(json, "state", unlessEmpty(row.state));
    write(json, "pid", row.pid >= 0 ? std::optional(row.pid) : std::nullopt);
    write(json, "processName", unlessEmpty(row.processName));
    write(json, "socketID", unlessEmpty(row.socketID));
    json.endObject();
}

} // namespace

void runConnections(const ConnectionsOptions& options, const sysinfo::SystemRoot& root, std::string& out) {
    sysinfo::SocketLister lister(root);
    const auto sockets = lister.list(sysinfo::SocketScope::all);
    if (!sockets) throw std::runtime_error("there is no table of TCP or UDP sockets to read");
    if (options.form == ConnectionsOptions::Form::json) {
        JsonWriter json;
        json.beginArray();
        eachRow(*sockets, options, [&](const Connection& row) { write(json, row); });
        json.endArray();
        json.newline();
        out += json.text();
    } else {
        ConnectionsText text(options.grouping, options.charset, sockets->size());
        eachRow(*sockets, options, [&](const Connection& row) { text.add(row); });
        text.appendTo(out);
    }
}

int runConnectionsCommand(const Options& options) {
    ConnectionsOptions connections = options.connections;
    if (options.form == Options::Form::json) connections.form = ConnectionsOptions::Form::json;
    connections.charset = charsetOfEnvironment();
    std::string out;
    runConnections(connections, options.root, out);
    writeOut(out);
    return 0;
}

} // namespace quarn::cli
