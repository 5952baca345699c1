#pragma once

#include <QList>
#include <QRect>
#include <QString>

namespace quarn::desktop {

/// The top left corner for a window of `size` beside `anchor` (an item of a panel at an edge of the screen,
/// or the cursor): below or above it, centred, inside `screen`.
QPoint besideAnchor(QSize size, const QRect& anchor, const QRect& screen);

/// `frame` moved as little as needed to lie on one of `screens`, the one that shows most of it or else the
/// nearest; as it is without screens.
QRect keptVisible(const QRect& frame, const QList<QRect>& screens);

/// A place for a panel that never had one: the first that is free of `taken`, from the upper right corner of
/// `screen` downwards and then column by column to the left.
QRect cascadePlace(QSize size, const QRect& screen, const QList<QRect>& taken);

bool isWayland();
/// Whether windows can choose their place and stay above others.
inline bool canPlaceWindows() { return !isWayland(); }
/// What to tell of that where floating panels are chosen; empty when there is nothing to tell.
QString placementNotice();

} // namespace quarn::desktop
