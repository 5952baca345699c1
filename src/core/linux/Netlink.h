#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <linux/netlink.h>
#include <optional>
#include <span>
#include <string_view>

/// Walks over netlink bytes without trusting a length. No pointer is cast: every structure is copied out.
namespace sysinfo::platform {

using Bytes = std::span<const char>;

/// The structure at the front of `bytes`; nullopt when they are too short for it.
template <class Structure>
std::optional<Structure> structureAt(Bytes bytes) {
    if (bytes.size() < sizeof(Structure)) return {};
    Structure structure;
    std::memcpy(&structure, bytes.data(), sizeof structure);
    return structure;
}

/// The bytes of a structure to be sent.
template <class Structure>
Bytes asBytes(const Structure& structure) {
    return {reinterpret_cast<const char*>(&structure), sizeof structure};
}

/// Structures and attributes are padded to four bytes.
inline size_t netlinkPadded(size_t length) { return (length + 3) & ~size_t{3}; }

/// `bytes` without the first `length` and their padding.
inline Bytes afterPadded(Bytes bytes, size_t length) {
    return bytes.subspan(std::min(netlinkPadded(length), bytes.size()));
}

/// Calls `visit(type, payload)` for each attribute, up to the first that does not fit.
template <class Visit>
void forEachAttribute(Bytes bytes, Visit visit) {
    while (const auto header = structureAt<nlattr>(bytes)) {
        if (header->nla_len < sizeof(nlattr) || header->nla_len > bytes.size()) return;
        visit(static_cast<uint16_t>(header->nla_type & NLA_TYPE_MASK),
              bytes.subspan(sizeof(nlattr), header->nla_len - sizeof(nlattr)));
        bytes = afterPadded(bytes, header->nla_len);
    }
}

/// Calls `visit(header, message)` for each message, `message` being all of it; false when one does not fit
/// into what is left.
template <class Visit>
bool forEachMessage(Bytes bytes, Visit visit) {
    while (!bytes.empty()) {
        const auto header = structureAt<nlmsghdr>(bytes);
        if (!header || header->nlmsg_len < sizeof(nlmsghdr) || header->nlmsg_len > bytes.size()) return false;
        visit(*header, bytes.first(header->nlmsg_len));
        bytes = afterPadded(bytes, header->nlmsg_len);
    }
    return true;
}

/// A text attribute, up to its NUL.
inline std::string_view attributeText(Bytes payload) {
    const std::string_view text(payload.data(), payload.size());
    return text.substr(0, text.find('\0'));
}

/// How far the answer to one request for a list has come. `failed` and `ended` are final; an interrupted
/// answer comes to its end but may lack entries, because some came or went meanwhile.
struct AnswerProgress {
    bool ended = false;
    bool failed = false;
    bool interrupted = false;
};

/// Walks one datagram of the answer to request number `sequence`, handing each whole message of `type` to
/// `visit`. Messages that answer another request are passed over.
template <class Visit>
void walkAnswer(Bytes datagram, uint32_t sequence, uint16_t type, AnswerProgress& progress, Visit visit) {
    const bool whole = forEachMessage(datagram, [&](const nlmsghdr& header, Bytes message) {
        if (header.nlmsg_seq != sequence || progress.ended || progress.failed) return;
        if (header.nlmsg_flags & NLM_F_DUMP_INTR) progress.interrupted = true;
        // Both carry a negative error number, or 0 where there was none.
        const bool isStatus = header.nlmsg_type == NLMSG_DONE || header.nlmsg_type == NLMSG_ERROR;
        const auto error = structureAt<int32_t>(message.subspan(sizeof header));
        if (isStatus && error.value_or(0) < 0) progress.failed = true;
        if (header.nlmsg_type == NLMSG_DONE) progress.ended = true;
        if (header.nlmsg_type == type) visit(message);
    });
    if (!whole) progress.failed = true;
}

/// The payload's leading structure of a message that was walked to.
template <class Header>
std::optional<Header> payloadHeader(Bytes message) {
    return structureAt<Header>(message.subspan(sizeof(nlmsghdr)));
}

/// The attributes of a message whose payload starts with `Header`.
template <class Header, class Visit>
void forEachAttributeAfter(Bytes message, Visit visit) {
    forEachAttribute(afterPadded(afterPadded(message, sizeof(nlmsghdr)), sizeof(Header)), visit);
}

} // namespace sysinfo::platform
