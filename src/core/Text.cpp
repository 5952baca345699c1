#include "core/Text.h"

#include <cstring>
#include <new>

namespace sysinfo {

Text::Text(std::string_view text) {
    if (text.empty()) return;
    if (text.size() > UINT32_MAX) text = text.substr(0, UINT32_MAX);
    void* memory = ::operator new(sizeof(Block) + text.size());
    block_ = new (memory) Block{1, static_cast<uint32_t>(text.size())};
    std::memcpy(static_cast<char*>(memory) + sizeof(Block), text.data(), text.size());
}

void Text::release() noexcept {
    if (block_->references.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    block_->~Block();
    ::operator delete(block_);
}

} // namespace sysinfo
