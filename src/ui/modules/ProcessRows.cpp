#include "ui/modules/ProcessRows.h"

#include "core/Scan.h"
#include "ui/modules/BusiestProgram.h"
#include "ui/modules/LetterCase.h"
#include "ui/modules/SearchWords.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

namespace quarn {

namespace {

constexpr double freshSeconds = 4;
constexpr size_t mostExited = 2000; ///< a build ends hundreds of processes a second
constexpr int deepest = 100;        ///< levels of the tree; what is deeper stands on the last one

constexpr uint16_t bit(ProcessField field) { return static_cast<uint16_t>(1U << static_cast<int>(field)); }

bool isSame(const ProcInfo& a, const ProcInfo& b) {
    return a.pid == b.pid && a.startTimeMicros == b.startTimeMicros;
}

/// The fields that are notably different: a figure that trembles is not worth a look.
uint16_t changesOf(const ProcInfo& before, const ProcInfo& after) {
    uint16_t changed = 0;
    const auto mark = [&](ProcessField field, bool differs) {
        if (differs) changed |= bit(field);
    };
    mark(ProcessField::name, before.name != after.name);
    mark(ProcessField::user, before.uid != after.uid);
    mark(ProcessField::state, before.state != after.state);
    mark(ProcessField::threads, before.threads != after.threads);
    mark(ProcessField::parent, before.ppid != after.ppid);
    mark(ProcessField::cpu, std::abs(after.cpuPercent - before.cpuPercent) >= 10);
    const auto memory = static_cast<double>(before.memBytes);
    const double grown = std::abs(static_cast<double>(after.memBytes) - memory);
    mark(ProcessField::memory, grown >= std::max(1048576.0, memory / 20));
    return changed;
}

bool matches(const ProcInfo& process, const SearchWords& words) {
    return words.all([&](const std::string& word) {
        return containsIgnoringCase(process.name, word) || containsIgnoringCase(process.path, word) ||
               containsIgnoringCase(process.user, word) || scutil::toNumber<int64_t>(word) == process.pid;
    });
}

constexpr uint64_t lastKey = std::numeric_limits<uint64_t>::max(); ///< of what is not known

/// Numbers as integers of the same order.
uint64_t keyOf(double number) {
    if (std::isnan(number)) return lastKey;
    const auto bits = std::bit_cast<uint64_t>(number);
    constexpr uint64_t sign = 1ULL << 63;
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

/// The first characters of a text in lower case, as an integer of the same order.
uint64_t keyOf(std::string_view text) {
    if (text.empty()) return lastKey;
    uint64_t key = 0;
    for (size_t i = 0; i < sizeof key; ++i)
        key = key << 8 | (i < text.size() ? static_cast<unsigned char>(lower(text[i])) : 0U);
    return key;
}

} // namespace

void ProcessRows::take(const Snapshot& snapshot, const Known& known, const Marks& marks, double now) {
    known_ = known;
    now_ = now;
    keepExited_ = marks.keepExited;
    gone_.clear();
    if (snapshot.processGeneration != generation_ || !watching_) {
        compareWith(snapshot.processes, marks, now);
        former_ = std::exchange(latest_, snapshot.processes);
        generation_ = snapshot.processGeneration;
        watching_ = true;
    }
    letGo(marks, now);
}

void ProcessRows::pause() { watching_ = false; }

/// Both lists are in ascending order of pid.
void ProcessRows::compareWith(const SharedList<ProcInfo>& latest, const Marks& marks, double now) {
    std::vector<Trace> traces;
    traces.reserve(latest.size());
    const double longAgo = now - 1e6;
    size_t old = 0;
    const auto leave = [&](const ProcInfo& process) {
        if (watching_ && marks.keepExited > 0)
            exited_.push_back(std::make_unique<Exited>(Exited{process, now}));
    };
    for (const ProcInfo& process : latest) {
        while (old < latest_.size() && latest_[old].pid < process.pid) leave(latest_[old++]);
        const bool hasOld = old < latest_.size() && latest_[old].pid == process.pid;
        if (hasOld && isSame(latest_[old], process)) {
            const bool compared = watching_ && marks.changes == Marks::Changes::mark;
            traces.push_back(
                {traces_[old].firstSeen, compared ? changesOf(latest_[old], process) : uint16_t{0}});
        } else {
            if (hasOld) leave(latest_[old]);
            traces.push_back({watching_ ? now : longAgo, 0});
        }
        if (hasOld) ++old;
    }
    while (old < latest_.size()) leave(latest_[old++]);
    traces_ = std::move(traces);
}

void ProcessRows::letGo(const Marks& marks, double now) {
    size_t over = 0; // the oldest come first
    while (over < exited_.size() &&
           (exited_[over]->at + marks.keepExited <= now || exited_.size() - over > mostExited))
        ++over;
    const auto end = exited_.begin() + static_cast<std::ptrdiff_t>(over);
    gone_.assign(std::make_move_iterator(exited_.begin()), std::make_move_iterator(end));
    exited_.erase(exited_.begin(), end);
}

std::span<const ProcessRow> ProcessRows::rows(const ProcessView& view) {
    collect(view);
    const bool isTree = view.shape == ProcessView::Shape::tree;
    if (isTree) {
        findParents();
        showAncestors();
    }
    sort(view);
    rows_.clear();
    isTree ? listTree() : listFlat();
    return rows_;
}

void ProcessRows::collect(const ProcessView& view) {
    const SearchWords words(view.search);
    const bool byText = isText(view.sortedBy);
    const bool down = view.direction == ProcessView::Direction::descending;
    items_.clear();
    matching_ = 0;
    const auto add = [&](const ProcInfo& process, ProcessRow::Life life, double fade, uint16_t changed) {
        const bool isMatch = (!view.user || process.uid == *view.user) && matches(process, words);
        if (isMatch && life != ProcessRow::Life::exited) ++matching_;
        uint64_t key = byText ? keyOf(processText(process, view.sortedBy))
                              : keyOf(processNumber(process, view.sortedBy, known_));
        if (down && key != lastKey) key = ~key;
        const auto place = static_cast<uint32_t>(items_.size());
        items_.push_back(
            {key, &process, place, -1, static_cast<float>(fade), life, isMatch, isMatch, changed});
    };
    for (size_t i = 0; i < latest_.size(); ++i) {
        const double fade = 1 - (now_ - traces_[i].firstSeen) / freshSeconds;
        add(latest_[i], fade > 0 ? ProcessRow::Life::fresh : ProcessRow::Life::running, std::max(fade, 0.0),
            traces_[i].changed);
    }
    for (const auto& exited : exited_)
        add(exited->process, ProcessRow::Life::exited, 1 - (now_ - exited->at) / keepExited_, 0);
}

void ProcessRows::findParents() {
    const auto running = items_.begin() + static_cast<std::ptrdiff_t>(latest_.size());
    std::unordered_map<int64_t, int> ended;
    for (auto it = running; it != items_.end(); ++it) ended[it->process->pid] = static_cast<int>(it->place);
    for (Item& item : items_) {
        const int64_t pid = item.process->ppid;
        const auto found =
            std::lower_bound(items_.begin(), running, pid,
                             [](const Item& each, int64_t wanted) { return each.process->pid < wanted; });
        if (found != running && found->process->pid == pid)
            item.parent = static_cast<int>(found->place);
        else if (const auto exited = ended.find(pid); exited != ended.end())
            item.parent = exited->second;
        if (item.parent == static_cast<int>(item.place)) item.parent = -1;
    }
}

void ProcessRows::showAncestors() {
    for (const Item& item : items_) {
        if (!item.isMatch) continue;
        for (int at = item.parent; at >= 0 && !items_[static_cast<size_t>(at)].isShown;
             at = items_[static_cast<size_t>(at)].parent)
            items_[static_cast<size_t>(at)].isShown = true;
    }
}

void ProcessRows::sort(const ProcessView& view) {
    order_.clear();
    for (const Item& item : items_)
        if (item.isShown) order_.push_back(item.place);
    const bool byText = isText(view.sortedBy);
    const int sign = view.direction == ProcessView::Direction::descending ? -1 : 1;
    std::sort(order_.begin(), order_.end(), [&](uint32_t left, uint32_t right) {
        const Item &a = items_[left], &b = items_[right];
        if (a.key != b.key) return a.key < b.key;
        if (byText && a.key != lastKey)
            if (const int order = compareIgnoringCase(processText(*a.process, view.sortedBy),
                                                      processText(*b.process, view.sortedBy));
                order != 0)
                return sign * order < 0;
        if (a.process->pid != b.process->pid) return a.process->pid < b.process->pid;
        return left < right;
    });
}

void ProcessRows::listFlat() {
    for (const uint32_t place : order_) {
        const Item& item = items_[place];
        rows_.push_back({item.process, -1, item.life, true, item.changed, item.fade});
    }
}

void ProcessRows::listTree() {
    // The children of each in their order, one after the other: `first[p]` to `first[p + 1]`, those at the
    // top last of all.
    const size_t top = items_.size();
    std::vector<uint32_t> first(items_.size() + 2, 0), children(order_.size());
    const auto above = [&](const Item& item) {
        return item.parent < 0 ? top : static_cast<size_t>(item.parent);
    };
    for (const uint32_t place : order_) ++first[above(items_[place]) + 1];
    for (size_t i = 1; i < first.size(); ++i) first[i] += first[i - 1];
    auto next = first;
    for (const uint32_t place : order_) children[next[above(items_[place])]++] = place;

    struct Step {
        uint32_t place;
        int parent; ///< row
        int level;
    };
    std::vector<Step> ahead;
    std::vector<bool> isListed(items_.size(), false);
    const auto descend = [&] {
        while (!ahead.empty()) {
            const Step step = ahead.back();
            ahead.pop_back();
            if (isListed[step.place]) continue;
            isListed[step.place] = true;
            const Item& item = items_[step.place];
            const int row = static_cast<int>(rows_.size());
            rows_.push_back({item.process, step.parent, item.life, item.isMatch, item.changed, item.fade});
            const bool deeper = step.level < deepest;
            for (uint32_t at = first[step.place + 1]; at-- > first[step.place];)
                ahead.push_back(
                    {children[at], deeper ? row : step.parent, deeper ? step.level + 1 : step.level});
        }
    };
    for (uint32_t at = first[top + 1]; at-- > first[top];) ahead.push_back({children[at], -1, 0});
    descend();
    // Pids that were given anew can make a ring of parents, which no root leads to.
    for (const uint32_t place : order_) {
        ahead.push_back({place, -1, 0});
        descend();
    }
}

const ProcInfo* ProcessRows::find(int64_t pid) const {
    const auto* found =
        std::lower_bound(latest_.begin(), latest_.end(), pid,
                         [](const ProcInfo& each, int64_t wanted) { return each.pid < wanted; });
    if (found != latest_.end() && found->pid == pid) return found;
    const auto exited = std::find_if(exited_.rbegin(), exited_.rend(),
                                     [&](const auto& each) { return each->process.pid == pid; });
    return exited == exited_.rend() ? nullptr : &(*exited)->process;
}

std::string processSentence(const Snapshot& snapshot, const Known& known) {
    if (snapshot.processes.empty()) return "No process can be read.";
    const auto counted = [](int64_t count, const char* one, const char* many) {
        std::string digits = std::to_string(count);
        for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3)
            digits.insert(static_cast<size_t>(at), ",");
        return digits + (count == 1 ? one : many);
    };
    std::string text = counted(static_cast<int64_t>(snapshot.processes.size()), " process", " processes");
    if (snapshot.totalThreads > 0) text += ", " + counted(snapshot.totalThreads, " thread", " threads");
    if (!known.processRates) return text;
    const auto busiest = busiestProgram(snapshot.processes, known);
    constexpr double busy = 1; // percent of a core
    if (!busiest || busiest->cpuPercent < busy) return text + "; all of them rest";
    return text.append("; ").append(busiest->name.view()).append(" uses most CPU");
}

std::string shellWords(std::span<const std::string> words) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./:,@%^";
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty()) text += ' ';
        if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) {
            text += word;
            continue;
        }
        text += '\'';
        for (const char c : word) c == '\'' ? text += "'\\''" : text += c;
        text += '\'';
    }
    return text;
}

} // namespace quarn
