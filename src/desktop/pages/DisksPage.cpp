// Disks and volumes, and what is read and written.
#include "HelperKit/SerialQueue.h"
#include "desktop/Background.h"
#include "desktop/Text.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/FactCard.h"
#include "desktop/widgets/ListModel.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/TableView.h"
#include "desktop/widgets/TimeChart.h"
#include "monitor/Monitor.h"
#include "ui/modules/Format.h"
#include "ui/modules/PageSentences.h"

#include <QVBoxLayout>

namespace quarn::desktop {
namespace {

constexpr double volumesEvery = 10; ///< seconds

using Align = TableColumn::Align;
using Shown = TableColumn::Shown;

struct DiskRow {
    std::string device, name, kind, medium, interface, link;
    uint64_t size = 0, readBytes = 0, writeBytes = 0;
    std::optional<double> read, written; ///< bytes a second

    bool operator==(const DiskRow&) const = default;
};

struct VolumeRow {
    Volume volume;

    std::optional<double> share() const { ///< that is used; none while the size is not known
        if (volume.total == 0) return {};
        return static_cast<double>(volume.used) / static_cast<double>(volume.total);
    }
    bool operator==(const VolumeRow& other) const {
        const auto fields = [](const Volume& v) {
            return std::tie(v.mount, v.device, v.fs, v.total, v.free, v.used, v.local);
        };
        return fields(volume) == fields(other.volume);
    }
};

QString rateText(const std::optional<double>& rate) {
    return rate ? toQt(format::rate(*rate)) : QString("—");
}

QString sizeText(uint64_t bytes) { return bytes > 0 ? toQt(format::diskSize(bytes)) : QString("—"); }

SortKey orLast(const std::optional<double>& value) { return value.value_or(SortKey::unknown); }

SortKey sizeKey(uint64_t bytes) { return bytes > 0 ? static_cast<double>(bytes) : SortKey::unknown; }

const std::vector<ListColumn<DiskRow>>& diskColumns() {
    constexpr auto down = Qt::DescendingOrder;
    using Row = DiskRow;
    static const std::vector<ListColumn<Row>> columns{
        {{"name", "Disk", "", Align::text, 14, Shown::always},
         [](const Row& r) { return toQt(r.name.empty() ? r.device : r.name); },
         [](const Row& r) { return SortKey(r.name.empty() ? r.device : r.name); },
         nullptr,
         [](const Row& r) { return toQt(r.name); }},
        {{"device", "Device", "The kernel's name of it", Align::text, 8},
         [](const Row& r) { return toQt(r.device); },
         [](const Row& r) { return SortKey(r.device); }},
        {{"kind", "Kind", "", Align::text, 12},
         [](const Row& r) { return toQt(r.kind); },
         [](const Row& r) { return SortKey(r.kind); }},
        {{"size", "Size", "", Align::figure, 7, Shown::usually, down},
         [](const Row& r) { return sizeText(r.size); },
         [](const Row& r) { return sizeKey(r.size); }},
        {{"read", "Reading", "Now", Align::figure, 9, Shown::usually, down},
         [](const Row& r) { return rateText(r.read); },
         [](const Row& r) { return orLast(r.read); }},
        {{"written", "Writing", "Now", Align::figure, 9, Shown::usually, down},
         [](const Row& r) { return rateText(r.written); },
         [](const Row& r) { return orLast(r.written); }},
        {{"interface", "Interface", "How it is connected", Align::text, 8},
         [](const Row& r) { return orUnknown(r.interface); },
         [](const Row& r) { return SortKey(r.interface); },
         nullptr,
         [](const Row& r) { return toQt(r.link); }},
        {{"medium", "Medium", "", Align::text, 7, Shown::onRequest},
         [](const Row& r) { return orUnknown(r.medium); },
         [](const Row& r) { return SortKey(r.medium); }},
        {{"link", "Link", "The speed of its connection", Align::text, 14, Shown::onRequest},
         [](const Row& r) { return orUnknown(r.link); },
         [](const Row& r) { return SortKey(r.link); }},
        {{"readBytes", "Read", "Since the machine started", Align::figure, 8, Shown::onRequest, down},
         [](const Row& r) { return toQt(format::diskSize(r.readBytes)); },
         [](const Row& r) { return SortKey(static_cast<double>(r.readBytes)); }},
        {{"writeBytes", "Written", "Since the machine started", Align::figure, 8, Shown::onRequest, down},
         [](const Row& r) { return toQt(format::diskSize(r.writeBytes)); },
         [](const Row& r) { return SortKey(static_cast<double>(r.writeBytes)); }},
    };
    return columns;
}

const std::vector<ListColumn<VolumeRow>>& volumeColumns() {
    constexpr auto down = Qt::DescendingOrder;
    using Row = VolumeRow;
    static const auto waiting = [](const Row& r) {
        return r.volume.total == 0 ? say("The file server has not answered yet.") : QString();
    };
    static const std::vector<ListColumn<Row>> columns{
        {{"mount", "Volume", "Where it is mounted", Align::text, 16, Shown::always},
         [](const Row& r) { return toQt(r.volume.mount); },
         [](const Row& r) { return SortKey(r.volume.mount); },
         nullptr,
         [](const Row& r) { return toQt(r.volume.mount); }},
        {{"share", "Used", "Of its size", Align::figure, 12, Shown::usually, down},
         [](const Row& r) { return r.share() ? toQt(format::percent(100 * *r.share())) : QString("—"); },
         [](const Row& r) { return orLast(r.share()); },
         [](const Row& r) -> std::optional<CellBar> {
             if (const auto share = r.share()) return CellBar{WidgetKind::disk, *share};
             return {};
         },
         waiting},
        {{"free", "Free", "What ordinary users may still fill", Align::figure, 9, Shown::usually, down},
         [](const Row& r) { return r.share() ? toQt(format::diskSize(r.volume.free)) : QString("—"); },
         [](const Row& r) { return r.share() ? SortKey(static_cast<double>(r.volume.free)) : SortKey(); },
         nullptr,
         waiting},
        {{"size", "Size", "", Align::figure, 9, Shown::usually, down},
         [](const Row& r) { return sizeText(r.volume.total); },
         [](const Row& r) { return sizeKey(r.volume.total); },
         nullptr,
         waiting},
        {{"fs", "File system", "", Align::text, 10},
         [](const Row& r) { return orUnknown(r.volume.fs); },
         [](const Row& r) { return SortKey(r.volume.fs); }},
        {{"device", "Device", "", Align::text, 14},
         [](const Row& r) { return orUnknown(r.volume.device); },
         [](const Row& r) { return SortKey(r.volume.device); },
         nullptr,
         [](const Row& r) { return toQt(r.volume.device); }},
    };
    return columns;
}

class DisksPage final : public Page {
public:
    explicit DisksPage(PageContext& context)
        : Page(context, say("Disks")),
          diskModel_(diskColumns(), [](const DiskRow& row) { return RowKey::of(row.device); }),
          volumeModel_(volumeColumns(),
                       [](const VolumeRow& row) { return RowKey::of(row.volume.device + row.volume.mount); }),
          range_(new RangePicker(context.prefs)),
          chart_(new TimeChart(context.history,
                               {{LiveSeries::diskRead, say("Read"), WidgetKind::disk},
                                {LiveSeries::diskWrite, say("Written"), WidgetKind::disk, true}},
                               {.text = [](double rate) { return toQt(format::rate(rate)); }})),
          disks_(new TableView("disks")),
          volumes_(new TableView("volumes")),
          facts_(new FactCard(say("All disks"))) {
        addTool(range_);
        auto* chart = new Card(say("Activity"));
        chart->content().addWidget(chart_);
        chart_->setFixedHeight(chartHeight);
        disks_->setAccessibleName(say("Disks"));
        disks_->setEmptyText(say("No physical disks were found. The disk of a container or of some virtual "
                                 "machines belongs to the machine outside."));
        disks_->show(diskModel_, 0, Qt::AscendingOrder);
        volumes_->setAccessibleName(say("Volumes"));
        volumes_->setEmptyText(say("Volumes are being looked at."));
        volumes_->show(volumeModel_, 0, Qt::AscendingOrder);
        for (auto* table : {disks_, volumes_}) table->fitRows();
        content().addWidget(chart);
        content().addWidget(disks_);
        content().addWidget(volumes_);
        content().addWidget(facts_);
        content().addStretch(1);
    }

    void refresh(const Snapshot& snapshot, const Known& known) override {
        setSentence(toQt(diskSentence(snapshot, known)));
        chart_->refresh(range_->follow());
        std::vector<DiskRow> rows;
        for (const DiskDevice& disk : snapshot.disks) {
            DiskRow row{disk.bsd,
                        disk.name,
                        std::string(diskKind(disk)),
                        disk.medium,
                        disk.interconnect,
                        disk.link,
                        disk.size,
                        disk.readBytes,
                        disk.writeBytes,
                        {},
                        {}};
            if (known.rates) row.read = disk.readRate, row.written = disk.writeRate;
            rows.push_back(std::move(row));
        }
        diskModel_.setRows(std::move(rows));
        facts_->show(diskFacts(snapshot.disk, known));
        readVolumes(steadySeconds());
    }

private:
    static constexpr int chartHeight = 190;

    /// What a volume holds may take long to ask: it is read aside and shown when it came.
    void readVolumes(double now) {
        if (isReading_ || (readAt_ && now - *readAt_ < volumesEvery)) return;
        isReading_ = true;
        inBackground(
            queue_, this, [&monitor = context_.monitor] { return monitor.volumes(); },
            [this](std::vector<Volume> volumes) {
                isReading_ = false;
                readAt_ = steadySeconds();
                std::vector<VolumeRow> rows;
                rows.reserve(volumes.size());
                for (Volume& volume : volumes) rows.push_back({std::move(volume)});
                volumeModel_.setRows(std::move(rows));
                volumes_->setEmptyText(say("No volumes were found."));
            });
    }

    ListModel<DiskRow> diskModel_;
    ListModel<VolumeRow> volumeModel_;
    RangePicker* range_;
    TimeChart* chart_;
    TableView* disks_;
    TableView* volumes_;
    FactCard* facts_;
    bool isReading_ = false;
    std::optional<double> readAt_;
    SerialQueue queue_{"volumes"}; ///< last: what runs on it ends first
};

} // namespace

Page* makeDisksPage(PageContext& context) { return new DisksPage(context); }

} // namespace quarn::desktop
