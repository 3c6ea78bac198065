#include "Libs/Framework/Application/src/WindowsApplication.h"
#include "Libs/Framework/Core/src/CommonMain.h"

std::shared_ptr<ApplicationBase> CreateApplication(int argc, const char** argv) {
    return std::make_shared<WindowsApplication>(argc, argv);
}
