#pragma once

#include "ui/modules/ProcessFields.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quarn {

/// What a person chose to see of the processes.
struct ProcessView {
    enum class Direction { ascending, descending };
    enum class Shape { list, tree };

    ProcessField sortedBy = ProcessField::cpu;
    Direction direction = Direction::descending;
    Shape shape = Shape::list;
    std::string search{};          ///< each of its words must occur; empty shows all
    std::optional<int64_t> user{}; ///< only those of this user number
};

/// One row of the list.
struct ProcessRow {
    enum class Life : uint8_t { running, fresh, exited };

    const ProcInfo* process = nullptr;
    int parent = -1; ///< number of the row it stands under, −1 at the top
    Life life = Life::running;
    bool isMatch = true;  ///< in a filtered tree false for those shown for their descendants
    uint16_t changed = 0; ///< bits by ProcessField: notably another value than before
    float fade = 0;       ///< of fresh and exited ones: 1 at first, going down to 0

    bool hasChanged(ProcessField field) const { return (changed >> static_cast<int>(field) & 1) != 0; }
};

/// From the process lists of snapshots to the rows of a list or tree: what came, went and changed, which
/// ones are wanted, in which order. A process is the same one while pid and start are. Belongs to one thread.
class ProcessRows {
public:
    /// Which marks are wanted, as the settings say.
    struct Marks {
        double keepExited = 0; ///< seconds that exited processes stay listed; 0 for none
        enum class Changes { ignore, mark } changes = Changes::mark;
    };

    /// Takes the processes of a snapshot; a list that was taken already only grows older. `now` is steady
    /// time in seconds.
    void take(const Snapshot& snapshot, const Known& known, const Marks& marks, double now);
    /// Nobody looks for now: what comes and goes until the next `take` is not marked.
    void pause();

    /// The rows from top to bottom, parents before their children. Valid until the next call of any member;
    /// the processes they point to until the second `take` from now.
    std::span<const ProcessRow> rows(const ProcessView& view);
    /// How many processes that run match the last view.
    size_t matching() const { return matching_; }

    /// The process of this pid that runs, or else that exited last; nullptr when there is none.
    const ProcInfo* find(int64_t pid) const;
    const Known& known() const { return known_; }

private:
    struct Exited {
        ProcInfo process;
        double at;
    };
    /// Beside each process of the latest list.
    struct Trace {
        double firstSeen;
        uint16_t changed;
    };
    struct Item {
        uint64_t key; ///< of the order; equal ones are compared in full
        const ProcInfo* process;
        uint32_t place;
        int parent; ///< place of the parent
        float fade;
        ProcessRow::Life life;
        bool isMatch;
        bool isShown;
        uint16_t changed;
    };

    void compareWith(const SharedList<ProcInfo>& latest, const Marks& marks, double now);
    void letGo(const Marks& marks, double now);
    void collect(const ProcessView& view);
    void findParents();
    void showAncestors();
    void sort(const ProcessView& view);
    void listFlat();
    void listTree();

    SharedList<ProcInfo> latest_;
    SharedList<ProcInfo> former_; ///< rows of the time before point into it
    std::vector<Trace> traces_;   ///< beside `latest_`
    std::vector<std::unique_ptr<Exited>> exited_;
    std::vector<std::unique_ptr<Exited>> gone_; ///< no longer listed; rows of the time before point to them
    Known known_;
    int64_t generation_ = 0;
    double now_ = 0;
    double keepExited_ = 0;
    bool watching_ = false;
    size_t matching_ = 0;
    std::vector<Item> items_;     ///< by place: the processes that run by pid, then the exited ones
    std::vector<uint32_t> order_; ///< places, sorted
    std::vector<ProcessRow> rows_;
};

/// "312 processes, 1,204 threads; firefox uses most CPU".
std::string processSentence(const Snapshot& snapshot, const Known& known);

/// The words of a command as a shell would take them: those with blanks or signs in quotes.
std::string shellWords(std::span<const std::string> words);

} // namespace quarn
