#pragma once

// Included ahead of every test file.
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>
