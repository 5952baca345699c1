#pragma once

#include "cli/view/Canvas.h"
#include "cli/view/Palette.h"

#include <optional>
#include <string>

namespace quarn::cli {

/// Brings frames to a terminal: the bytes that turn the frame it shows into the next one, only what changed,
/// to be sent with one write so that nothing flickers.
class Painter {
public:
    explicit Painter(Palette palette) : palette_(std::move(palette)) {}

    /// The bytes for `frame`, valid until the next call. All of it when the size changed or after `forget`.
    const std::string& paint(const Canvas& frame);

    /// The terminal no longer shows what was painted (it was resized, or another program used it).
    void forget() { shown_.reset(); }
    void setPalette(Palette palette) {
        palette_ = std::move(palette);
        forget();
    }

private:
    Palette palette_;
    std::optional<Canvas> shown_;
    std::string bytes_;
};

} // namespace quarn::cli
