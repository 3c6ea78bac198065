// Any text can be offered as an expression, and any name of the longest kind can be searched.
#include <vector>

#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// Such as configurations have.
AttachmentBlacklist Usual() {
    AttachmentBlacklist list;
    AttachmentBlacklist::BadPattern bad;
    FUZZ_REQUIRE(list.Compile({"\\.tmp$", "^logs[\\\\/]private", "(^|[\\\\/])\\.", "[Ss]ave[0-9]{1,3}\\.dat",
                               "(user|profile).*\\.(json|xml)$"},
                              bad)
                     .Succeeded());
    return list;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    static const AttachmentBlacklist s_usual = Usual();
    const std::string text(Fuzz::Text(input));
    AttachmentBlacklist list;
    AttachmentBlacklist::BadPattern bad;
    if (!list.Compile({text}, bad)) {
        FUZZ_REQUIRE(bad.pattern == text && !bad.message.empty());
    }
    // Repeats multiply and back-references search for long: such expressions are the configuration's own
    // fault.
    if (text.size() <= 64 && text.find_first_of("{\\") == std::string::npos) {
        FUZZ_REQUIRE(list.Judge(text) != AttachmentBlacklist::Verdict::Unknown);
    }
    const std::string name = text.substr(0, MaxAttachmentNameLength);
    const bool isTemporary = name.ends_with(".tmp");
    FUZZ_REQUIRE(s_usual.Judge(name) != AttachmentBlacklist::Verdict::Unknown);
    FUZZ_REQUIRE(!isTemporary || s_usual.Judge(name) == AttachmentBlacklist::Verdict::Listed);
}
