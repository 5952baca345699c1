#include "cli/CommandLine.h"

int main(int argc, char** argv) { return quarn::cli::runCommandLine(argc, argv); }
