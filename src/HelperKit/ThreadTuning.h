#pragma once

#include "HelperKit/Queue.h"

#include <chrono>
#include <string_view>

/// What the system lets a thread say about itself: its name, its urgency and how exactly it wants to be
/// woken. Everything here concerns the calling thread, fails quietly and costs a system call or two.
namespace quarn {

/// Names the thread. The kernel keeps 15 bytes; of a longer label the last ones, where labels differ.
void nameThread(std::string_view label);

/// The nice value that goes with an urgency, above the one the program was started with: 0, 5 and 10.
///
/// An ordinary user may lower a thread but rarely raise it again. So a thread that may have to be urgent
/// again later is lowered only when the way back is open, and otherwise stays as it is.
enum class Lowering { forGood, onlyIfReversible };
void setThreadUrgency(QualityOfService qos, Lowering lowering);

/// By how much the kernel may delay a timed wait of the thread to serve several wake-ups at once.
std::chrono::nanoseconds threadTimerSlack();
void setThreadTimerSlack(std::chrono::nanoseconds slack);

} // namespace quarn
