#include "desktop/WindowFixture.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    return quarn::testing::withApplication(argc, argv, [] { return RUN_ALL_TESTS(); });
}
