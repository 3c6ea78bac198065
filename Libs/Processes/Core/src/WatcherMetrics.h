#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "Libs/Processes/Core/src/IMetricsAggregator.h"

// The three numbers that a watcher publishes. Without an aggregator every call does nothing. Made on the main
// thread, set on the watcher's.
class WatcherMetrics {
public:
    void Make(IMetricsAggregator& aggregator, std::string_view watcherName);

    void SetPendingExisting(std::size_t count) const { Set(m_pendingExisting, count); }
    void SetPendingNew(std::size_t count) const { Set(m_pendingNew, count); }
    void SetKnown(std::size_t count) const { Set(m_known, count); }

    // The name with every upper-case letter lowered and every byte that is no ASCII letter or digit as "_".
    static std::string LabelName(std::string_view name);

private:
    static void Set(const std::shared_ptr<IMetric>& metric, std::size_t count);

    std::shared_ptr<IMetric> m_pendingExisting;
    std::shared_ptr<IMetric> m_pendingNew;
    std::shared_ptr<IMetric> m_known;
};
