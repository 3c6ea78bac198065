#include "Libs/Processes/Core/src/CatalogOrder.h"

std::vector<const Attachment*> FilesInPackageOrder(const Catalog& catalog) {
    std::vector<const Attachment*> files;
    const auto add = [&](const Attachment& attachment) {
        if (!attachment.file.empty()) {
            files.push_back(&attachment);
        }
    };
    add(catalog.log);
    add(catalog.dump);
    for (const Attachment& attachment : catalog.attachments) {
        add(attachment);
    }
    return files;
}
