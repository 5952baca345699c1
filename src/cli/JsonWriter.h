#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quarn::cli {

/// Writes JSON text piece by piece into one buffer that is kept between documents: no tree, no allocation
/// once the buffer has grown. The caller nests begin and end rightly and gives each value of an object a key.
///
/// Numbers that are not finite become null. Text that is not UTF-8 gets U+FFFD where it is broken, so that
/// every document is well formed whatever a process calls itself.
class JsonWriter {
public:
    const std::string& text() const { return out_; }
    void clear();
    void newline() { out_ += '\n'; }

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    /// `name` must need no escaping, as names of fields do.
    void key(std::string_view name);

    void null() { raw("null"); }
    void boolean(bool value) { raw(value ? "true" : "false"); }
    void number(int64_t value);
    void number(uint64_t value);
    /// At most six decimals, in the shortest form; larger magnitudes with all their digits.
    void number(double value);
    void string(std::string_view value);

private:
    void open(char bracket);
    void close(char bracket);
    void separate();
    void raw(std::string_view text);

    std::string out_;
    bool needsComma_ = false;
};

} // namespace quarn::cli
