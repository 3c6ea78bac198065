#include "Libs/Shared/src/ConfigKeys.h"

#include <algorithm>
#include <numeric>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

// The edit distance, row by row: costs[i] is that of the letters seen so far to the first i of known.
std::size_t Distance(std::string_view key, std::string_view known) {
    std::vector<std::size_t> costs(known.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t{0});
    for (const char letter : key) {
        std::size_t diagonal = costs[0]++;
        for (std::size_t i = 0; i < known.size(); ++i) {
            const bool isSame = String::LowerAscii(letter) == String::LowerAscii(known[i]);
            const std::size_t replaced = diagonal + (isSame ? 0 : 1);
            diagonal = costs[i + 1];
            costs[i + 1] = std::min({replaced, diagonal + 1, costs[i] + 1});
        }
    }
    return costs.back();
}

} // namespace

bool ConfigKeys::IsForPeople(std::string_view key) {
    return key.starts_with('$') || key.starts_with("//");
}

std::vector<std::string_view> ConfigKeys::Of(const Reflection::TypeDescriptor& record) {
    JsonSerialization::PlanCache<Reflection::DeserializeFunction> plans;
    std::vector<std::string_view> keys;
    for (const auto& field : plans.Get(record).fields) {
        keys.push_back(field.key);
    }
    return keys;
}

std::string_view ConfigKeys::Nearest(std::string_view key, const std::vector<std::string_view>& known) {
    const auto nearest = std::ranges::min_element(
        known, {}, [key](std::string_view candidate) { return Distance(key, candidate); });
    return nearest == known.end() ? std::string_view() : *nearest;
}
