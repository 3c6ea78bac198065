#pragma once

namespace Platform {

// Stands for something that is in force as long as the receipt lives; destroying the receipt undoes it.
class Receipt {
public:
    virtual ~Receipt() = default;
    Receipt(const Receipt&) = delete; // its registration is undone once
    Receipt& operator=(const Receipt&) = delete;

protected:
    Receipt() = default;
};

} // namespace Platform
