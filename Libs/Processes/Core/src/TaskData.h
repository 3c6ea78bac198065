#pragma once

#include <string>

// One complete submission folder, as a watcher hands it to its consumer.
class TaskData {
public:
    // The folder's full path without a trailing separator; neither null nor empty.
    explicit TaskData(const char* hash);

    const std::string& GetInstanceHash() const { return m_instanceHash; }

private:
    std::string m_instanceHash;
    std::string m_context; // left empty by the watcher
};
