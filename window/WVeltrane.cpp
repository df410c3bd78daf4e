#include "window/WVeltrane.h"

#include "platform/run/Runtime.h"
#include "shell/MainMenuBar.h"
#include "window/Form.h"

namespace veltrane {

Ref<class WVeltrane> WVeltrane()
{
    Ref<Window> window = _GetImplicitWindow("WVeltrane");
    if (!window) {
        window = New<class WVeltrane>(WVeltrane::Clef {});
        window->Constructor();
    }
    return Cast<class WVeltrane>(window);
}

void WVeltrane::Layout()
{
    MenuBar(MainMenuBar());
    _SetProperties(*this, form::kWindow);
}

void WVeltrane::CreateControls()
{
    _CreateControls0();
}

template<class T>
void WVeltrane::MakeControl(const char* name, std::span<const Property> properties)
{
    const Ref<T> control = __New<T>();
    control->Constructor();
    _AddControl(name, control);
    _SetProperties(*ControlNamed<T>(name), properties);
}

void WVeltrane::_CreateControls0()
{
    MakeControl<Canvas>("CV", form::kCV);
    CV()->Paint.Add([this](const auto& sender, const auto& g, auto areas) { CV_Paint(sender, g, areas); });

    MakeControl<GroupBox>("GroupBox1", form::kGroupBox1);
    MakeControl<CheckBox>("CbJPG", form::kCbJPG);

    MakeControl<Slider>("SLQualite", form::kSLQualite);
    SLQualite()->ValueChanged.Add([this](const auto& sender) { SLQualite_ValueChanged(sender); });
    SLQualite()->Open.Add([this](const auto& sender) { SLQualite_Open(sender); });

    MakeControl<Label>("TypeQual", form::kTypeQual);
    MakeControl<CheckBox>("CbPNG", form::kCbPNG);
    MakeControl<Label>("lbNbFich", form::kLbNbFich);
}

template<class T>
Ref<T> WVeltrane::ControlNamed(const char* name) const
{
    return Cast<T>(_ControlByName(name));
}

Ref<Canvas> WVeltrane::CV() const
{
    return ControlNamed<Canvas>("CV");
}

Ref<GroupBox> WVeltrane::GroupBox1() const
{
    return ControlNamed<GroupBox>("GroupBox1");
}

Ref<CheckBox> WVeltrane::CbJPG() const
{
    return ControlNamed<CheckBox>("CbJPG");
}

Ref<Slider> WVeltrane::SLQualite() const
{
    return ControlNamed<Slider>("SLQualite");
}

Ref<Label> WVeltrane::TypeQual() const
{
    return ControlNamed<Label>("TypeQual");
}

Ref<CheckBox> WVeltrane::CbPNG() const
{
    return ControlNamed<CheckBox>("CbPNG");
}

Ref<Label> WVeltrane::lbNbFich() const
{
    return ControlNamed<Label>("lbNbFich");
}

template<class T>
Ref<T> WVeltrane::MenuNamed(const char* name) const
{
    return Cast<T>(MenuBar()->_Lookup(name));
}

Ref<MenuItem> WVeltrane::EditMenu() const
{
    return MenuNamed<MenuItem>("EditMenu");
}

Ref<MenuItem> WVeltrane::EditSelectAll() const
{
    return MenuNamed<MenuItem>("EditSelectAll");
}

Ref<MenuItem> WVeltrane::EditSeparator2() const
{
    return MenuNamed<MenuItem>("EditSeparator2");
}

Ref<MenuItem> WVeltrane::EditClear() const
{
    return MenuNamed<MenuItem>("EditClear");
}

Ref<MenuItem> WVeltrane::EditPaste() const
{
    return MenuNamed<MenuItem>("EditPaste");
}

Ref<MenuItem> WVeltrane::EditCopy() const
{
    return MenuNamed<MenuItem>("EditCopy");
}

Ref<MenuItem> WVeltrane::EditCut() const
{
    return MenuNamed<MenuItem>("EditCut");
}

Ref<MenuItem> WVeltrane::EditSeparator1() const
{
    return MenuNamed<MenuItem>("EditSeparator1");
}

Ref<MenuItem> WVeltrane::EditUndo() const
{
    return MenuNamed<MenuItem>("EditUndo");
}

Ref<MenuItem> WVeltrane::FileMenu() const
{
    return MenuNamed<MenuItem>("FileMenu");
}

Ref<QuitMenuItem> WVeltrane::FileQuit() const
{
    return MenuNamed<QuitMenuItem>("FileQuit");
}

} // namespace veltrane
