// Any text can be offered as an expression, and any name of the longest kind can be searched.
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    using Verdict = AttachmentBlacklist::Verdict;
    const std::string text(Fuzz::Text(input));
    AttachmentBlacklist list;
    AttachmentBlacklist usual;
    AttachmentBlacklist::BadPattern bad;
    FUZZ_REQUIRE(
        usual.Compile({"\\.tmp$", "(^|[\\\\/])\\.", "(user|profile).*\\.(json|xml)$"}, bad).Succeeded());
    if (!list.Compile({text}, bad)) {
        FUZZ_REQUIRE(bad.pattern == text && !bad.message.empty());
    }
    // Repeats multiply and back-references search for long: that is the configuration's own fault.
    if (text.size() <= 64 && text.find_first_of("{\\") == std::string::npos) {
        FUZZ_REQUIRE(list.Judge(text) != Verdict::Unknown);
    }
    const std::string name = text.substr(0, MaxAttachmentNameLength);
    FUZZ_REQUIRE(usual.Judge(name) != Verdict::Unknown);
    FUZZ_REQUIRE(!name.ends_with(".tmp") || usual.Judge(name) == Verdict::Listed);
}
