// Interfaces, what they carry, and everything known of the selected one.
#include "desktop/Text.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/FactCard.h"
#include "desktop/widgets/ListModel.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/TableView.h"
#include "desktop/widgets/TimeChart.h"
#include "ui/modules/Format.h"
#include "ui/modules/PageSentences.h"

#include <QVBoxLayout>

namespace quarn::desktop {
namespace {

struct InterfaceRow {
    std::string name, media, addresses, mac;
    bool up = false;
    std::optional<double> in, out; ///< bytes a second
    uint64_t received = 0, sent = 0;
    uint64_t errors = 0, drops = 0;
    int64_t mtu = 0;
    ReadingStyle style;

    bool operator==(const InterfaceRow&) const = default;
};

QString rateText(const std::optional<double>& rate, const ReadingStyle& style) {
    return rate ? toQt(networkRateText(*rate, style)) : QString("—");
}

const std::vector<ListColumn<InterfaceRow>>& interfaceColumns() {
    using enum TableColumn::Align;
    using enum TableColumn::Shown;
    constexpr auto down = Qt::DescendingOrder;
    using Row = InterfaceRow;
    static const std::vector<ListColumn<InterfaceRow>> columns{
        {{"name", "Interface", "", text, 9, always},
         [](const Row& r) { return toQt(r.name); },
         [](const Row& r) { return SortKey(r.name); }},
        {{"state", "State", "Whether the interface is switched on and running", text, 5},
         [](const Row& r) { return r.up ? say("up") : say("down"); },
         [](const Row& r) { return SortKey(r.up ? 0.0 : 1.0); }},
        {{"in", "Receiving", "Now", figure, 10, usually, down},
         [](const Row& r) { return rateText(r.in, r.style); },
         [](const Row& r) { return SortKey(r.in.value_or(SortKey::unknown)); }},
        {{"out", "Sending", "Now", figure, 10, usually, down},
         [](const Row& r) { return rateText(r.out, r.style); },
         [](const Row& r) { return SortKey(r.out.value_or(SortKey::unknown)); }},
        {{"received", "Received", "Since the interface came up", figure, 9, usually, down},
         [](const Row& r) { return toQt(format::diskSize(r.received)); },
         [](const Row& r) { return SortKey(static_cast<double>(r.received)); }},
        {{"sent", "Sent", "Since the interface came up", figure, 9, usually, down},
         [](const Row& r) { return toQt(format::diskSize(r.sent)); },
         [](const Row& r) { return SortKey(static_cast<double>(r.sent)); }},
        {{"addresses", "Addresses", "", text, 15},
         [](const Row& r) { return orUnknown(r.addresses); },
         [](const Row& r) { return SortKey(r.addresses); },
         nullptr,
         [](const Row& r) { return toQt(r.addresses); }},
        {{"media", "Media", "", text, 20, onRequest},
         [](const Row& r) { return orUnknown(r.media); },
         [](const Row& r) { return SortKey(r.media); }},
        {{"mac", "MAC", "The hardware's address", text, 18, onRequest},
         [](const Row& r) { return orUnknown(r.mac); },
         [](const Row& r) { return SortKey(r.mac); }},
        {{"mtu", "MTU", "The largest packet in bytes", figure, 6, onRequest, down},
         [](const Row& r) { return r.mtu > 0 ? QString::number(r.mtu) : QString("—"); },
         [](const Row& r) { return SortKey(static_cast<double>(r.mtu)); }},
        {{"errors", "Errors", "Packets received or sent with errors", figure, 7, onRequest, down},
         [](const Row& r) { return QString::number(r.errors); },
         [](const Row& r) { return SortKey(static_cast<double>(r.errors)); }},
        {{"drops", "Dropped", "Packets received and thrown away", figure, 7, onRequest, down},
         [](const Row& r) { return QString::number(r.drops); },
         [](const Row& r) { return SortKey(static_cast<double>(r.drops)); }},
    };
    return columns;
}

InterfaceRow rowOf(const NetInterface& link, const Known& known, const ReadingStyle& style) {
    InterfaceRow row{link.name, link.media, link.addrs, link.mac, link.up, {}, {}, {}, {}, {}, {}, {}, style};
    if (known.rates) row.in = link.rxRate, row.out = link.txRate;
    row.received = link.rxBytes;
    row.sent = link.txBytes;
    row.errors = link.rxErrors + link.txErrors;
    row.drops = link.drops;
    row.mtu = link.mtu;
    return row;
}

class NetworkPage final : public Page {
public:
    explicit NetworkPage(PageContext& context)
        : Page(context, say("Network")),
          model_(interfaceColumns(), [](const InterfaceRow& row) { return RowKey::of(row.name); }),
          range_(new RangePicker(context.prefs)),
          traffic_(new Card(say("Traffic"))),
          chart_(new TimeChart(context.history,
                               {{LiveSeries::networkIn, say("Received"), WidgetKind::network},
                                {LiveSeries::networkOut, say("Sent"), WidgetKind::network, true}},
                               scale({}))),
          table_(new TableView("interfaces")),
          details_(new FactCard({})) {
        addTool(range_);
        traffic_->content().addWidget(chart_);
        chart_->setFixedHeight(chartHeight);
        table_->setAccessibleName(say("Interfaces"));
        table_->setSelectionMode(QAbstractItemView::SingleSelection);
        table_->setEmptyText(say("No network interface but the loopback was found."));
        table_->show(model_, 0, Qt::AscendingOrder);
        table_->fitRows();
        connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] { tell(); });
        details_->hide();
        for (QWidget* part : {static_cast<QWidget*>(traffic_), static_cast<QWidget*>(table_),
                              static_cast<QWidget*>(details_)})
            content().addWidget(part);
        content().addStretch(1); // cards keep their height
    }

    void refresh(const Snapshot& snapshot, const Known& known) override {
        const ReadingStyle style = readingStyle(context_.prefs);
        if (style != style_) chart_->setScale(scale(style));
        style_ = style;
        ratesKnown_ = known.rates ? RatesKnown::yes : RatesKnown::no;
        interfaces_ = snapshot.interfaces;
        std::vector<InterfaceRow> rows;
        for (const NetInterface& link : interfaces_) rows.push_back(rowOf(link, known, style));
        model_.setRows(std::move(rows));
        if (!table_->currentIndex().isValid() && model_.rowCount() > 0)
            table_->setCurrentIndex(model_.index(0, 0));
        traffic_->setNote(known.network ? say("%1 received and %2 sent so far")
                                              .arg(toQt(format::diskSize(snapshot.net.rxBytes)),
                                                   toQt(format::diskSize(snapshot.net.txBytes)))
                                        : QString());
        chart_->refresh(range_->follow());
        setSentence(toQt(networkSentence(snapshot, known, style)));
        tell();
    }

private:
    static constexpr int chartHeight = 190;

    static TimeChart::Scale scale(const ReadingStyle& style) {
        return {0, [style](double rate) { return toQt(networkRateText(rate, style)); },
                style.networkInBits ? 8.0 : 1.0};
    }

    /// Everything about the selected interface.
    void tell() {
        const QModelIndex current = table_->currentIndex();
        const NetInterface* chosen = nullptr;
        for (const NetInterface& link : interfaces_)
            if (current.isValid() && link.name == model_.row(current).name) chosen = &link;
        if (details_->isHidden() == (chosen != nullptr)) details_->setVisible(chosen != nullptr);
        if (!chosen) return;
        details_->setTitle(toQt(chosen->name));
        details_->show(interfaceFacts(*chosen, ratesKnown_, style_));
    }

    ListModel<InterfaceRow> model_;
    RangePicker* range_;
    Card* traffic_;
    TimeChart* chart_;
    TableView* table_;
    FactCard* details_;
    SharedList<NetInterface> interfaces_;
    RatesKnown ratesKnown_ = RatesKnown::no;
    ReadingStyle style_;
};

} // namespace

Page* makeNetworkPage(PageContext& context) { return new NetworkPage(context); }

} // namespace quarn::desktop
