#include "panels/LookPanel.h"

#include "document/Nodes.h"
#include "panels/ColourButton.h"

#include "Collect.h"
#include "Group.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QScopedValueRollback>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace VARNO;

namespace desktop {

namespace {

constexpr int stepsPerDeviation = 20, maxDeviations = 15, percent = 100;

QSlider *MakeSlider(const char *name, int minimum, int maximum) {
    auto *slider = new QSlider(Qt::Horizontal);
    slider->setObjectName(name);
    slider->setRange(minimum, maximum);
    return slider;
}

QComboBox *MakeChoice(const char *name, const QStringList &entries) {
    auto *choice = new QComboBox;
    choice->setObjectName(name);
    choice->addItems(entries);
    return choice;
}

QWidget *Beside(QWidget *left, QWidget *right) {
    auto *both = new QWidget;
    auto *layout = new QHBoxLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(left, 1);
    layout->addWidget(right);
    return both;
}

} // namespace

LookPanel::LookPanel(Document &document)
    : m_document(document)
    , m_mapBox(MakeMapBox())
    , m_chainBox(MakeChainBox())
    , m_hint(new QLabel(tr("How maps and chains look is set here\nonce some are open."))) {
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setEnabled(false);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_hint);
    layout->addWidget(m_mapBox);
    layout->addWidget(m_chainBox);
    layout->addStretch();
    connect(&document, &Document::added, this, &LookPanel::UpdateMaps);
    connect(&document, &Document::removed, this, &LookPanel::UpdateMaps);
    connect(&document, &Document::selectionChanged, this, &LookPanel::UpdateSelection);
    connect(&document, &Document::lookChanged, this, [this] {
        ShowLook();
        ShowChainLook();
    });
    UpdateMaps();
}

QGroupBox *LookPanel::MakeMapBox() {
    auto *box = new QGroupBox(tr("Map"));
    m_map = MakeChoice("mapChoice", {});
    m_map->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_levelSlider = MakeSlider("levelSlider", -5 * stepsPerDeviation, maxDeviations * stepsPerDeviation);
    m_level = new QDoubleSpinBox;
    m_level->setObjectName("level");
    m_level->setRange(-999, 999);
    m_level->setSingleStep(0.1);
    m_level->setSuffix(tr(" σ"));
    m_level->setToolTip(tr("Level of the surface, in standard deviations above the map's mean"));
    m_value = new QLabel;
    m_value->setObjectName("levelValue");
    m_value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_surface = new QCheckBox(tr("&Surface"));
    m_surface->setObjectName("surface");
    m_colour = new ColourButton;
    m_colour->setObjectName("mapColour");
    m_opacity = MakeSlider("opacity", 5, percent);
    m_sliceAxis = MakeChoice("sliceAxis", {tr("none"), tr("across x"), tr("across y"), tr("across z")});
    m_slice = MakeSlider("slice", 0, 1000);
    auto *form = new QFormLayout(box);
    form->addRow(m_map);
    form->addRow(tr("Level"), Beside(m_levelSlider, m_level));
    form->addRow(tr("Value"), m_value);
    form->addRow(m_surface, m_colour);
    form->addRow(tr("Opacity"), m_opacity);
    form->addRow(tr("Slice"), Beside(m_slice, m_sliceAxis));

    connect(m_map, &QComboBox::currentIndexChanged, this, &LookPanel::ShowLook);
    connect(m_levelSlider, &QSlider::valueChanged, this, [this](int steps) {
        Set([&](MapLook &look) { look.level = double(steps) / stepsPerDeviation; });
    });
    connect(m_level, &QDoubleSpinBox::valueChanged, this,
            [this](double level) { Set([&](MapLook &look) { look.level = level; }); });
    connect(m_surface, &QCheckBox::toggled, this,
            [this](bool shown) { Set([&](MapLook &look) { look.surface = shown; }); });
    connect(m_colour, &ColourButton::chosen, this,
            [this](const QColor &colour) { Set([&](MapLook &look) { look.colour = colour; }); });
    connect(m_opacity, &QSlider::valueChanged, this,
            [this](int value) { Set([&](MapLook &look) { look.opacity = double(value) / percent; }); });
    connect(m_sliceAxis, &QComboBox::currentIndexChanged, this,
            [this](int choice) { Set([&](MapLook &look) { look.sliceAxis = choice - 1; }); });
    connect(m_slice, &QSlider::valueChanged, this,
            [this](int value) { Set([&](MapLook &look) { look.slice = value / 1000.0; }); });
    return box;
}

QGroupBox *LookPanel::MakeChainBox() {
    auto *box = new QGroupBox(tr("Chains"));
    m_which = new QLabel;
    m_style = MakeChoice("chainStyle", {tr("Tube"), tr("Ball and stick")});
    m_colouring = MakeChoice("chainColouring", {tr("First to last residue"), tr("One colour")});
    m_chainColour = new ColourButton;
    m_chainColour->setObjectName("chainColour");
    auto *form = new QFormLayout(box);
    form->addRow(m_which);
    form->addRow(tr("Drawn as"), m_style);
    form->addRow(tr("Colour"), Beside(m_colouring, m_chainColour));

    connect(m_style, &QComboBox::currentIndexChanged, this,
            [this](int style) { SetChains([&](ChainLook &look) { look.style = ChainLook::Style(style); }); });
    connect(m_colouring, &QComboBox::currentIndexChanged, this,
            [this](int choice) { SetChains([&](ChainLook &look) { look.rainbow = choice == 0; }); });
    connect(m_chainColour, &ColourButton::chosen, this, [this](const QColor &colour) {
        SetChains([&](ChainLook &look) {
            look.rainbow = false;
            look.colour = colour;
        });
    });
    return box;
}

void LookPanel::UpdateMaps() {
    Compound *current = Map();
    const QScopedValueRollback showing(m_isShowing, true);
    m_map->clear();
    Document::Nodes maps;
    GetItems<Grid>(Space::instance(), maps, true, nullptr, true);
    for (Compound *map : maps)
        m_map->addItem(NameOf(map), QVariant::fromValue(static_cast<void *>(map)));
    m_map->setCurrentIndex(std::max(0, m_map->findData(QVariant::fromValue(static_cast<void *>(current)))));
    m_mapBox->setVisible(!maps.empty());
    m_isShowing = false;
    ShowLook();
    ShowChainLook();
}

void LookPanel::UpdateSelection() {
    for (Compound *node : m_document.Selection())
        if (const int row = m_map->findData(QVariant::fromValue(static_cast<void *>(node))); row >= 0)
            m_map->setCurrentIndex(row);
    ShowChainLook();
}

void LookPanel::ShowLook() {
    const Grid *map = Map();
    if (!map || m_isShowing)
        return;
    const QScopedValueRollback showing(m_isShowing, true);
    const MapLook look = m_document.LookOf(map);
    const formats::MapStatistics statistics = m_document.StatisticsOf(map);
    m_levelSlider->setValue(int(std::lround(look.level * stepsPerDeviation)));
    m_level->setValue(look.level);
    m_value->setText(QString::number(statistics.mean + look.level * statistics.deviation, 'g', 4) +
                     tr("  (map: %1 to %2)")
                         .arg(double(statistics.minimum), 0, 'g', 3)
                         .arg(double(statistics.maximum), 0, 'g', 3));
    m_surface->setChecked(look.surface);
    m_colour->SetColour(look.colour);
    m_opacity->setValue(int(std::lround(look.opacity * percent)));
    m_sliceAxis->setCurrentIndex(look.sliceAxis + 1);
    m_slice->setValue(int(std::lround(look.slice * 1000)));
    m_slice->setEnabled(look.sliceAxis >= 0);
}

void LookPanel::ShowChainLook() {
    const Document::Nodes chains = Chains();
    m_chainBox->setVisible(!chains.empty());
    m_hint->setVisible(chains.empty() && m_map->count() == 0);
    if (chains.empty())
        return;
    const QScopedValueRollback showing(m_isShowing, true);
    const ChainLook look = m_document.LookOfChain(chains.front());
    m_which->setText(chains.size() == 1 ? PathOf(chains.front())
                                        : Counted(qsizetype(chains.size()), "chain"));
    m_style->setCurrentIndex(int(look.style));
    m_colouring->setCurrentIndex(look.rainbow ? 0 : 1);
    m_chainColour->SetColour(look.colour);
}

Grid *LookPanel::Map() const {
    return static_cast<Grid *>(m_map->currentData().value<void *>());
}

Document::Nodes LookPanel::Chains() const {
    const auto chainsOf = [](const Document::Nodes &nodes) {
        Document::Nodes chains;
        for (Compound *node : nodes) {
            while (node && dynamic_cast<const Group *>(node))
                node = node->GetParent();
            for (Compound *drawn : Drawn(node))
                if (IsDrawnAsChain(drawn))
                    chains.push_back(drawn);
        }
        return chains;
    };
    const Document::Nodes selected = chainsOf(m_document.Selection());
    return selected.empty() ? chainsOf(m_document.Tops()) : selected;
}

template <class Change>
void LookPanel::Set(Change change) {
    Grid *map = Map();
    if (!map || m_isShowing)
        return;
    MapLook look = m_document.LookOf(map);
    change(look);
    m_document.SetLook(map, look);
}

template <class Change>
void LookPanel::SetChains(Change change) {
    if (m_isShowing)
        return;
    for (Compound *chain : Chains()) {
        ChainLook look = m_document.LookOfChain(chain);
        change(look);
        m_document.SetLookOfChain(chain, look);
    }
}

} // namespace desktop
