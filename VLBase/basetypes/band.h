#pragma once

#include <VLBase/basetypes/bandgsm.h>
#include <VLBase/vlbase_export.h>

#include <QObject>
#include <QString>

class QDomDocument;
class QDomElement;

/// What `Band::FindFrequency` found.
enum FrequencyFound {
    FrequencyOnChannel = 0,       ///< exactly on a channel or a raster point
    FrequencyBetweenChannels = 1, ///< inside the band, but beside its channels or raster points
    FrequencyOutsideBand = 2,     ///< a GSM band without a channel at that frequency
    FrequencyWithoutRaster = 3,   ///< a simple band that does not use its raster
};

/// A named frequency band, simple or GSM, that can be shown, stepped through and kept as XML.
///
///     Band air(QStringLiteral("Air band"), 25000.0, 0.0, true);
///     air.GetFrequency(0, 118'030'000.0);   // 118025000.0: down to the raster
class VLBASE_EXPORT Band : public QObject, public BandGSM
{
    Q_OBJECT

public:
    /// A simple band without a name: a raster of 10000 Hz.
    Band();

    /// A simple band.
    /// \param useRaster whether frequencies are snapped to the raster
    Band(QString name, double spacing, double offset, bool useRaster);

    /// A GSM band.
    /// \param system whether it belongs to the built-in plan, and is kept by name only
    Band(QString name, double stepWidth, double startFreq, unsigned long startChannel,
         unsigned long stopChannel, unsigned long channelCalculationFactor, bool system);

    /// Copies the band, not the `QObject`.
    Band(const Band& other);
    Band& operator=(const Band& other);
    ~Band() override;

    bool operator==(const Band& other) const;
    bool operator!=(const Band& other) const { return !(*this == other); }

    /// Orders by spacing alone; names and frequencies play no part.
    bool operator<(const Band& other) const { return m_stepWidth < other.m_stepWidth; }

    bool GetGSM() const { return m_type == BandTypeGSM; }
    bool GetUseRaster() const { return m_useRaster; }
    void SetUseRaster(bool useRaster) { m_useRaster = useRaster; }
    bool isSystem() const { return m_system; }
    bool isVisible() const { return m_visible; }

    /// Hides the band, whatever the argument: bands are never shown again.
    void setVisible(bool visible);

    using BandGSM::GetFrequency;

    /// Of a GSM band the frequency of `channel`; of a simple one `frequency`, snapped to the raster
    /// when that is used. A spacing in whole hertz snaps down, any other to the nearest point.
    double GetFrequency(unsigned long channel, double frequency);

    /// Tells how a frequency lies in the band. A GSM band that holds it writes its channel, which
    /// becomes the cursor; otherwise `channel` is left alone.
    ///
    /// Every frequency below the offset of a simple band counts as on its raster.
    FrequencyFound FindFrequency(double frequency, unsigned long& channel);

    /// The frequency one step further. A GSM band steps its cursor and stays within its channels,
    /// a simple one steps from `current`.
    /// \param canGoUp, canGoDown whether another step would stay within the limits
    double GetNextFrequency(bool up, bool& canGoUp, bool& canGoDown, double current,
                            double lowLimit, double highLimit);

    /// Appends the band to `parent`, one element per field. A band of the built-in plan is its
    /// name.
    ///
    /// The offset keeps six significant digits and the start frequency six decimals; the
    /// calculation factor is not kept, because a reader takes the start channel for it. A name that
    /// would not come back, and could cost the reader the document, is refused: nothing is appended
    /// then, which is traced. That are names with control characters, halves of surrogate pairs, or
    /// a carriage return among nothing but blanks.
    void Save(QDomDocument& doc, QDomElement& parent) const;

    /// Takes the fields over that the element's children name. Other elements are ignored;
    /// sub-bands and the system and visible flags stay as they are. A child that is no element ends
    /// the reading with a trace, what was read until then stays.
    void Read(QDomDocument& doc, QDomElement& element);

private:
    void readField(const QString& tag, const QString& text);
    double snapToRaster(double frequency) const;
    double stepCursor(bool up, bool& canGoUp, bool& canGoDown, double lowLimit, double highLimit);

    bool m_useRaster = true;
    bool m_system = false;
    bool m_visible = true;
};
