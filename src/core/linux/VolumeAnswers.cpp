#include "core/linux/VolumeAnswers.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

namespace sysinfo::platform {

struct VolumeAnswers::State {
    struct Entry {
        Answer answer;
        bool beingAsked = false;
        bool wanted = true; ///< named by the latest call
    };

    explicit State(Ask function) : ask(std::move(function)) {}

    const Ask ask;
    std::mutex mutex;
    std::condition_variable answered;
    std::map<std::string, Entry> entries; ///< by key
};

namespace {

/// Signals are for the program's own threads: one that may hang for ever must not be chosen for any.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &former_);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &former_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t former_;
};

bool startDetached(std::function<void()> work) {
    const SignalsBlocked blocked; // a thread inherits the mask
    try {
        std::thread(std::move(work)).detach();
        return true;
    } catch (const std::system_error&) {
        return false; // no thread to be had: the next call tries again
    }
}

} // namespace

VolumeAnswers::VolumeAnswers(Ask ask, std::chrono::milliseconds patience)
    : state_(std::make_shared<State>(std::move(ask))), patience_(patience) {}

std::vector<VolumeAnswers::Answer> VolumeAnswers::answers(const std::vector<Question>& questions) {
    std::unique_lock lock(state_->mutex);
    for (auto& [key, entry] : state_->entries) entry.wanted = false;

    std::vector<std::string> met; // for the first time
    for (const auto& question : questions) {
        const auto [place, isNew] = state_->entries.try_emplace(question.key);
        auto& entry = place->second;
        entry.wanted = true;
        if (entry.beingAsked) continue;
        entry.beingAsked = startDetached([state = state_, question] {
            const auto space = state->ask(question.mountPoint);
            const std::lock_guard guard(state->mutex);
            auto& own = state->entries[question.key];
            if (space)
                own.answer = {Answer::State::known, *space};
            else if (own.answer.state != Answer::State::known)
                own.answer.state = Answer::State::refused;
            own.beingAsked = false;
            state->answered.notify_all();
        });
        if (isNew && entry.beingAsked) met.push_back(question.key);
    }
    std::erase_if(state_->entries,
                  [](const auto& item) { return !item.second.wanted && !item.second.beingAsked; });

    state_->answered.wait_for(lock, patience_, [&] {
        return std::none_of(met.begin(), met.end(),
                            [&](const std::string& key) { return state_->entries[key].beingAsked; });
    });
    std::vector<Answer> latest;
    latest.reserve(questions.size());
    for (const auto& question : questions) latest.push_back(state_->entries[question.key].answer);
    return latest;
}

} // namespace sysinfo::platform
