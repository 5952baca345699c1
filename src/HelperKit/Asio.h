#pragma once

// Comes before any header of Asio, in every file that includes one, so that all agree on its configuration.
// Asio would wait for its timers with a timerfd, which knows no timer slack; the timeout of its poll does.
#include <asio/detail/config.hpp>
#undef ASIO_HAS_TIMERFD
