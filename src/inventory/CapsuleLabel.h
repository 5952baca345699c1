#pragma once

namespace quarn {

/// The small coloured label of a state.
struct CapsuleLabel {
    /// What the state means to a person; the surface gives each its icon and colour.
    enum class Tone { neutral, ok, warn, bad, info };
};

} // namespace quarn
