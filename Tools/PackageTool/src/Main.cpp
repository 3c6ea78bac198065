#include "Tools/PackageTool/src/PackageTool.h"

int main(int argc, char** argv) {
    return RunPackageTool({argv + (argc > 0 ? 1 : 0), argv + argc});
}
