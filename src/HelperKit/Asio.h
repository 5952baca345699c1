#pragma once

// Comes before any header of Asio, in every file that includes one, so that all agree on its configuration.
// Asio would wait for its timers with a timerfd, which knows no timer slack; the timeout of its poll does.
#if defined(ASIO_DETAIL_EPOLL_REACTOR_HPP)
#error "HelperKit/Asio.h comes before any header of Asio"
#endif
#include <asio/detail/config.hpp>
#undef ASIO_HAS_TIMERFD
