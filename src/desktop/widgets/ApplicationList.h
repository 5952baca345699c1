#pragma once

#include "desktop/widgets/RankList.h"
#include "ui/modules/ProcessGroups.h"

namespace quarn::desktop {

/// The applications (processes of one name) that use most of the processor or of the memory.
class ApplicationList : public RankList {
    Q_OBJECT
public:
    explicit ApplicationList(GroupOrder order, QWidget* parent = nullptr);

    enum class CpuShare { ofOneCore, ofTheMachine };
    void refresh(const Snapshot& snapshot, const Known& known, CpuShare share);

private:
    GroupOrder order_;
};

} // namespace quarn::desktop
