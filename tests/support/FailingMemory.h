#pragma once

#include <cstddef>

// For test programs that are built with FailingMemory.cpp, whose operator new can be told to fail.
namespace TestSupport {

// While it lives, this thread's nth allocation, counted from 0, throws std::bad_alloc, and only that one.
class FailingMemory {
public:
    explicit FailingMemory(std::size_t nth);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete; // it stands for the thread's only counter
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool HasFailed() const;
};

} // namespace TestSupport
