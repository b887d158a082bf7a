#pragma once

#include <memory>
#include <utility>

/// A kind of step of which only the latest counts, such as reading the list for a search: what was
/// searched before is late when its list comes. Steps and their answers belong to one thread; once
/// this is destroyed every answer is late.
class Latest
{
public:
    /// Stands for one step.
    class Token
    {
    public:
        bool isCurrent() const { return *wanted_; }

    private:
        friend class Latest;
        explicit Token(std::shared_ptr<bool> wanted) : wanted_(std::move(wanted)) {}

        std::shared_ptr<bool> wanted_;
    };

    Latest() = default;
    ~Latest() { abandon(); }
    Latest(const Latest &) = delete;
    Latest &operator=(const Latest &) = delete;

    /// Begins a step; the earlier one is late from now on.
    Token next()
    {
        abandon();
        wanted_ = std::make_shared<bool>(true);
        return Token(wanted_);
    }

    /// What is under way is not wanted any more.
    void abandon() { *wanted_ = false; }

    /// Whether a step has begun that is neither over nor abandoned.
    bool isUnderWay() const { return *wanted_; }

    /// Begins a step and returns \a take for its answer: the step is over when that is called, and
    /// it does nothing when the answer is late.
    template <typename Take> auto only(Take take)
    {
        return [token = next(), take = std::move(take)](auto &&...answer) mutable {
            if (!std::exchange(*token.wanted_, false))
                return;
            take(std::forward<decltype(answer)>(answer)...);
        };
    }

private:
    std::shared_ptr<bool> wanted_ = std::make_shared<bool>(false);
};
