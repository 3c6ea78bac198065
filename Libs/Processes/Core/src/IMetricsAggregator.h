#pragma once

#include <memory>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// One number under a name and labels. Any thread.
class IMetric {
public:
    virtual ~IMetric() = default;
    virtual void SetLabel(const char* key, const char* value) = 0;
    virtual void SetValue(double value) = 0;
};

// What a process offers that publishes the numbers of other processes. Any thread.
class IMetricsAggregator {
public:
    // Metrics of one name differ by their labels. Never null; shared with the aggregator.
    virtual std::shared_ptr<IMetric> MakeMetric(const char* name, const char* help) = 0;

protected:
    ~IMetricsAggregator() = default; // owned as a process, never through this view
};

Reflection_DeclarePolymorphicType(IMetricsAggregator);
