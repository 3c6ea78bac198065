#include "Libs/Processes/Core/src/WatcherMetrics.h"

Reflection_DefinePolymorphicType(IMetricsAggregator);

namespace {

constexpr char PendingName[] = "kestrix_pending_folders";
constexpr char PendingHelp[] = "Number of folders waiting to be processed";
constexpr char KnownName[] = "kestrix_known_folders";
constexpr char KnownHelp[] =
    "Number of known folders that will be ignored because they have already been processed";

std::shared_ptr<IMetric> MakePending(IMetricsAggregator& aggregator, const char* status,
                                     const std::string& label) {
    std::shared_ptr<IMetric> metric = aggregator.MakeMetric(PendingName, PendingHelp);
    metric->SetLabel("status", status);
    metric->SetLabel("watcher", label.c_str());
    return metric;
}

} // namespace

void WatcherMetrics::Make(IMetricsAggregator& aggregator, std::string_view watcherName) {
    const std::string label = LabelName(watcherName);
    m_pendingExisting = MakePending(aggregator, "existing", label);
    m_pendingNew = MakePending(aggregator, "new", label);
    m_known = aggregator.MakeMetric(KnownName, KnownHelp);
    m_known->SetLabel("watcher", label.c_str());
}

std::string WatcherMetrics::LabelName(std::string_view name) {
    std::string label(name);
    for (char& character : label) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        } else if (!(character >= 'a' && character <= 'z') && !(character >= '0' && character <= '9')) {
            character = '_';
        }
    }
    return label;
}

void WatcherMetrics::Set(const std::shared_ptr<IMetric>& metric, std::size_t count) {
    if (metric) {
        metric->SetValue(static_cast<double>(count));
    }
}
