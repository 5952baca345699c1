#include "history/MetricsStoreKeeper.h"

#include "HelperKit/Log.h"
#include "history/HistoryFiles.h"

#include <fmt/format.h>

namespace quarn {

namespace {

using namespace std::chrono_literals;
using State = HistoryStatus::State;

constexpr auto betweenMaintenance = 3600s;
constexpr auto betweenVacuums = 86'400s;

/// Whether `period` has passed since `last`, which a clock that was set back may have put into the future.
bool hasPassed(WallTime::duration period, WallTime last, WallTime now) {
    return now - last >= period || last > now;
}

} // namespace

MetricsStoreKeeper::MetricsStoreKeeper(Setup setup) : setup_(std::move(setup)) {}

void MetricsStoreKeeper::begin() {
    storeFailed_ = false;
    try {
        if (becomeWriter()) tell({State::recording, lost_});
    } catch (const std::exception& error) {
        fail("open", error);
    }
}

void MetricsStoreKeeper::end() {
    store_.reset();
    lock_.release();
    tell({State::off, lost_});
}

void MetricsStoreKeeper::write(const MetricsBatch& batch, WallTime now) {
    guardWrite([&](MetricsStore& store) {
        const bool tookOver = std::exchange(otherRecorded_, false);
        if (!batch.empty() && !tookOver) store.write(batch);
        tell({State::recording, lost_});
        if (now >= nextMaintenance_ || nextMaintenance_ - now > betweenMaintenance) maintain(store, now);
    });
}

void MetricsStoreKeeper::maintain(MetricsStore& store, WallTime now) {
    nextMaintenance_ = now + betweenMaintenance;
    if (!clock_->believes(unixSeconds(now), setup_.steadySeconds())) return;
    store.maintain(now);
    const auto last = store.lastVacuum();
    if (!last || hasPassed(betweenVacuums, *last, now)) store.vacuum(now);
}

void MetricsStoreKeeper::clear() {
    auto* store = forWriting();
    if (!store)
        throw SQLiteError(status_.problem.empty() ? "another program records the history" : status_.problem);
    store->clear();
}

void MetricsStoreKeeper::guardWrite(const Use& work) {
    try {
        use(forWriting(), work);
    } catch (const std::exception& error) {
        log(fmt::format("could not write the metrics history: {}", error.what()));
        tell({storeFailed_ ? State::failed : State::recording, error.what()});
    }
}

void MetricsStoreKeeper::guardRead(const Use& ask) {
    try {
        use(forReading(), ask);
    } catch (const std::exception& error) {
        log(fmt::format("could not read the metrics history: {}", error.what()));
    }
}

void MetricsStoreKeeper::use(MetricsStore* store, const Use& work) {
    if (!store) return;
    try {
        work(*store);
    } catch (const SQLiteError& error) {
        if (!error.isBroken() || !lock_.isHeld() || !replaceBroken(error)) throw;
        work(*store_); // with nothing lost but what was in the broken one
    }
}

MetricsStore* MetricsStoreKeeper::forWriting() {
    if (storeFailed_) return nullptr;
    try {
        if (!becomeWriter()) return nullptr;
        if (!store_ || access_ != MetricsStore::Access::writing) openForWriting();
    } catch (const std::exception& error) {
        fail("open", error);
        return nullptr;
    }
    return store_.get();
}

MetricsStore* MetricsStoreKeeper::forReading() {
    if (store_) return store_.get();
    if (auto* store = forWriting()) return store;
    if (!storeFailed_) open(MetricsStore::Access::reading);
    return store_.get();
}

bool MetricsStoreKeeper::becomeWriter() {
    if (lock_.acquire(setup_.file)) return true;
    otherRecorded_ = true;
    tell({State::otherRecorder, {}});
    return false;
}

void MetricsStoreKeeper::open(MetricsStore::Access access) {
    store_.reset();
    access_ = access;
    store_ = setup_.openStore(access);
    if (access == MetricsStore::Access::writing) clock_.emplace(store_->newestRecord());
}

void MetricsStoreKeeper::openForWriting() {
    try {
        open(MetricsStore::Access::writing);
    } catch (const SQLiteError& error) {
        if (!(error.isBroken() || error.isMisfit()) || !replaceBroken(error)) throw;
    }
}

/// Begins a new database in the place of a broken one; false when that is no way out.
bool MetricsStoreKeeper::replaceBroken(const SQLiteError& error) {
    store_.reset();
    if (std::exchange(replaced_, true)) {
        storeFailed_ = true; // the file system itself must be at fault
        return false;
    }
    const auto aside = setAside(setup_.file, error.what());
    lost_ =
        fmt::format("The history could not be read ({}). It was set aside as {}, and a new one was begun.",
                    error.what(), aside.string());
    log(lost_);
    open(MetricsStore::Access::writing);
    return true;
}

void MetricsStoreKeeper::fail(const char* what, const std::exception& error) {
    storeFailed_ = true;
    store_.reset();
    log(fmt::format("could not {} the metrics history: {}", what, error.what()));
    tell({State::failed, error.what()});
}

void MetricsStoreKeeper::tell(HistoryStatus status) {
    if (status == status_) return;
    status_ = std::move(status);
    if (setup_.statusChanged) setup_.statusChanged(status_);
}

} // namespace quarn
