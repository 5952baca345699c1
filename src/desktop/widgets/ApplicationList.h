#pragma once

#include "desktop/widgets/RankList.h"
#include "ui/modules/AppRows.h"

namespace quarn::desktop {

/// The applications that use most of the processor or of the memory.
class ApplicationList : public RankList {
    Q_OBJECT
public:
    /// `order` is AppField::cpu or AppField::memory.
    explicit ApplicationList(AppField order, QWidget* parent = nullptr);

    void refresh(const ResourceAppList& list, const Known& known, const AppStyle& style);

private:
    AppField order_;
};

} // namespace quarn::desktop
