#pragma once

#include <cstdint>
#include <span>

#include "platform/files/FolderItem.h"
#include "platform/pictures/Picture.h"
#include "platform/widgets/Canvas.h"
#include "platform/widgets/CheckBox.h"
#include "platform/widgets/DragItem.h"
#include "platform/widgets/GroupBox.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/Menu.h"
#include "platform/widgets/Slider.h"
#include "platform/widgets/Window.h"

namespace veltrane {

class WVeltrane;

/// The one window; built at the first call, and again at the first call after it has closed.
Ref<class WVeltrane> WVeltrane();

/// The main window: a drop target with a preview, two check boxes and a quality slider.
class WVeltrane final : public Window {
    /// Only the accessor makes one. It also keeps `WVeltrane()` inside a member, which names the
    /// constructor there, from making a second window unseen.
    struct Clef {
        explicit Clef() = default;
    };

public:
    explicit WVeltrane(Clef) { }

    [[nodiscard]] String _ClassName() const override { return "WVeltrane"; }

    Ref<Picture> pImage; ///< the picture of the last file taken in, a copy; nil before the first
    Ref<FolderItem> pFich; ///< the last file taken in; nil before the first
    std::int64_t nbFichiers = 0; ///< files taken in since this window opened

protected:
    void Layout() override;
    void CreateControls() override;
    virtual void _CreateControls0();

public:
    /// @name Controls, found by name; nil before CreateControls has made them
    /// @{
    [[nodiscard]] virtual Ref<Canvas> CV() const;
    [[nodiscard]] virtual Ref<GroupBox> GroupBox1() const;
    [[nodiscard]] virtual Ref<CheckBox> CbJPG() const;
    [[nodiscard]] virtual Ref<Slider> SLQualite() const;
    [[nodiscard]] virtual Ref<Label> TypeQual() const;
    [[nodiscard]] virtual Ref<CheckBox> CbPNG() const;
    [[nodiscard]] virtual Ref<Label> lbNbFich() const;
    /// @}

    /// @name Handlers of the controls; each gets the sending control first
    /// @{
    virtual void CV_Paint(const Ref<Canvas>& sender, const Ref<Graphics>& g, std::span<const Rect> areas);
    virtual void SLQualite_ValueChanged(const Ref<Slider>& sender);
    virtual void SLQualite_Open(const Ref<Slider>& sender);
    /// @}

    /// @name Menu entries, found by name in the window's menu bar
    /// @{
    [[nodiscard]] virtual Ref<MenuItem> EditMenu() const;
    [[nodiscard]] virtual Ref<MenuItem> EditSelectAll() const;
    [[nodiscard]] virtual Ref<MenuItem> EditSeparator2() const;
    [[nodiscard]] virtual Ref<MenuItem> EditClear() const;
    [[nodiscard]] virtual Ref<MenuItem> EditPaste() const;
    [[nodiscard]] virtual Ref<MenuItem> EditCopy() const;
    [[nodiscard]] virtual Ref<MenuItem> EditCut() const;
    [[nodiscard]] virtual Ref<MenuItem> EditSeparator1() const;
    [[nodiscard]] virtual Ref<MenuItem> EditUndo() const;
    [[nodiscard]] virtual Ref<MenuItem> FileMenu() const;
    [[nodiscard]] virtual Ref<QuitMenuItem> FileQuit() const;
    /// @}

protected:
    void Event_Open() override;
    void Event_DropObject(const Ref<DragItem>& obj, std::int64_t action) override;
    void Event_Close() override;

public:
    /// Writes the current picture beside its file, in the wanted formats. Tells the user itself what went
    /// wrong, and returns.
    virtual void mSauveImage(bool bJPG, bool bPNG);

    /// Takes one file in: decodes it, shows it, has its copies written, counts it. A file that does not
    /// exist changes nothing. Raises what the decoding raises; what is shown stays as it was then.
    virtual void mTraitFichier(const Ref<FolderItem>& f);

private:
    friend Ref<class WVeltrane> veltrane::WVeltrane();

    /// Makes a control, enters it under its name and applies its properties.
    template<class T>
    void MakeControl(const char* name, std::span<const Property> properties);

    template<class T>
    [[nodiscard]] Ref<T> ControlNamed(const char* name) const;
    template<class T>
    [[nodiscard]] Ref<T> MenuNamed(const char* name) const;

    void ShowQuality(const Ref<Slider>& sender);
};

} // namespace veltrane
