// Scaffolding: pages whose files do not exist yet. Each is removed when its page is built.
#include "desktop/pages/Pages.h"

namespace quarn::desktop {
namespace {
class UnbuiltPage final : public Page {
public:
    using Page::Page;
    void refresh(const Snapshot&, const Known&) override {}
};
} // namespace

#define UNBUILT(name)                                                                                        \
    Page* make##name##Page(PageContext& context) { return new UnbuiltPage(context, #name); }
UNBUILT(Connections)

} // namespace quarn::desktop
