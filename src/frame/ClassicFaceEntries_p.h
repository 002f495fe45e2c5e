#pragma once

#include "ClassicFace_p.h"
#include "Conversions.h"
#include "PropertyTable.h"
#include "PropertyValues.h"

namespace Kelocontrols {

/**
 * Adds the property-table entries of the shared classic members to a
 * control's table, at the place where they stand in its read order:
 *
 *     ClassicFaceEntries<C>(t, faceOf).backColor(0x8000000F).enabled().font();
 *
 * Each entry reads through the control's public accessor and loads through
 * the face's store*() (no PropertyChanged while a bag is read). `faceOf`
 * reaches the control's ClassicFace in its private data, so it is written
 * inside the control's own table() where that data is visible.
 */
template<class C>
class ClassicFaceEntries
{
public:
    using FaceOf = ClassicFace &(*)(C &);

    ClassicFaceEntries(PropertyTable<C> &table, FaceOf faceOf)
        : m_table(table)
        , m_faceOf(faceOf)
    {
    }

    ClassicFaceEntries &backColor(OleColor defaultColor)
    {
        const FaceOf faceOf = m_faceOf;
        m_table.add(
            "BackColor", QVariant(uint(defaultColor)), [](const C &c) { return QVariant(c.BackColor()); },
            [faceOf](C &c, const QVariant &v) { faceOf(c).storeBackColor(colorFromVariant(v)); });
        return *this;
    }

    ClassicFaceEntries &foreColor(OleColor defaultColor)
    {
        const FaceOf faceOf = m_faceOf;
        m_table.add(
            "ForeColor", QVariant(uint(defaultColor)), [](const C &c) { return QVariant(c.ForeColor()); },
            [faceOf](C &c, const QVariant &v) { faceOf(c).storeForeColor(colorFromVariant(v)); });
        return *this;
    }

    /// Enabled, default True.
    ClassicFaceEntries &enabled()
    {
        const FaceOf faceOf = m_faceOf;
        m_table.add(
            "Enabled", QVariant(true), [](const C &c) { return QVariant(c.Enabled()); },
            [faceOf](C &c, const QVariant &v) { faceOf(c).storeEnabled(CBool(v)); });
        return *this;
    }

    /// Font, default the container's ambient font.
    ClassicFaceEntries &font()
    {
        const FaceOf faceOf = m_faceOf;
        m_table.add(
            "Font", [](const C &c) { return QVariant(c.ambientFont()); }, [](const C &c) { return QVariant(c.Font()); },
            [faceOf](C &c, const QVariant &v) { faceOf(c).storeFont(fontFromVariant(v)); });
        return *this;
    }

private:
    PropertyTable<C> &m_table;
    FaceOf m_faceOf;
};

} // namespace Kelocontrols
