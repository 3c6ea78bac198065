#pragma once

#include <cstddef>

// For test programs that are built with FailingMemory.cpp, whose operator new can be told to fail.
namespace TestSupport {

// While it lives, this thread's nth allocation, counted from 0, throws std::bad_alloc. The others do not.
class FailingMemory {
public:
    explicit FailingMemory(std::size_t nth);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete; // each thread has one counter
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool HasFailed() const;
};

} // namespace TestSupport
