#pragma once

#include <atomic>
#include <memory>

/// Says that work is to end. Its copies are one flag, so that whoever gives work and the threads
/// that do it each hold one; raised once and for good, on any thread. A new round takes a new flag.
class StopFlag
{
public:
    void raise() { raised_->store(true); }
    bool isRaised() const { return raised_->load(); }

private:
    std::shared_ptr<std::atomic<bool>> raised_ = std::make_shared<std::atomic<bool>>(false);
};
