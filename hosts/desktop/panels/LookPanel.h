#pragma once

#include "document/Document.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QGroupBox;
class QLabel;
class QSlider;

namespace desktop {

class ColourButton;

/// How a map and the chains are drawn. The map is the one that was selected last; chains are the selected
/// ones, or all where none is.
class LookPanel : public QWidget {
    Q_OBJECT

public:
    explicit LookPanel(Document &document);

private:
    QGroupBox *MakeMapBox();
    QGroupBox *MakeChainBox();
    void UpdateMaps();
    void UpdateSelection();
    void ShowLook();
    void ShowChainLook();
    VARNO::Grid *Map() const;
    Document::Nodes Chains() const;
    /// Changes the look of the map, or of the chains, in one respect.
    template <class Change>
    void Set(Change change);
    template <class Change>
    void SetChains(Change change);

    Document &m_document;
    QGroupBox *m_mapBox, *m_chainBox;
    QComboBox *m_map;
    QSlider *m_levelSlider, *m_opacity, *m_slice;
    QDoubleSpinBox *m_level;
    QLabel *m_value, *m_which, *m_hint;
    ColourButton *m_colour, *m_chainColour;
    QCheckBox *m_surface;
    QComboBox *m_sliceAxis, *m_style, *m_colouring;
    bool m_isShowing = false; ///< the controls are being told of the looks
};

} // namespace desktop
