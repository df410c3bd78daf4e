#include "window/Form.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace veltrane::form {

namespace {

constexpr int kWhite = 0x00FFFFFF;
constexpr int kBlack = 0x00000000;
constexpr int kNoIndex = INT32_MIN; // the control belongs to no array of controls

enum class Locks { LeftTop, AllEdges };

struct Place {
    int left, top, width, height;
    Locks locks;
    int tabIndex;
};

// The rows with which every control's table begins.
constexpr std::array<Property, 13> Head(const Place& place)
{
    const bool grows = place.locks == Locks::AllEdges;
    return { {
        { "Index", kNoIndex },
        { "Left", place.left },
        { "Top", place.top },
        { "Width", place.width },
        { "Height", place.height },
        { "LockLeft", true },
        { "LockTop", true },
        { "LockRight", grows },
        { "LockBottom", grows },
        { "TabIndex", place.tabIndex },
        { "TabPanelIndex", 0 },
        { "TabStop", true },
        { "AutoDeactivate", true },
    } };
}

// Tables joined to one, in the order given.
template<std::size_t... Sizes>
constexpr auto Join(const std::array<Property, Sizes>&... tables)
{
    // Property has no default value: the first row stands in until all are copied.
    const auto first = std::get<0>(std::tie(tables...))[0];
    auto joined = [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        return std::array<Property, sizeof...(I)> { ((void)I, first)... };
    }
    (std::make_index_sequence<(Sizes + ...)>());
    auto next = joined.begin();
    ((next = std::copy(tables.begin(), tables.end(), next)), ...);
    return joined;
}

constexpr auto kPlainText = std::to_array<Property>({
    { "Bold", false },
    { "Italic", false },
    { "TextFont", "System" },
    { "TextSize", 0 },
    { "TextUnit", 0 },
    { "Underline", false },
});

constexpr auto CheckBoxTable(const Place& place, const char* caption)
{
    return Join(Head(place),
        std::to_array<Property>({
            { "Caption", caption },
            { "Enabled", true },
            { "HelpTag", "" },
            { "Transparent", false },
            { "Visible", true },
        }),
        kPlainText,
        std::to_array<Property>({
            { "State", 0 },
            { "Value", false },
            { "DataField", "" },
            { "DataSource", "" },
            { "InitialParent", "GroupBox1" },
        }));
}

constexpr auto LabelTable(const Place& place, const char* text, int textAlign)
{
    return Join(Head(place),
        std::to_array<Property>({
            { "Enabled", true },
            { "HelpTag", "" },
            { "Multiline", false },
            { "Selectable", false },
            { "Text", text },
            { "TextAlign", textAlign },
            { "TextColor", kBlack },
            { "Transparent", false },
            { "Visible", true },
        }),
        kPlainText,
        std::to_array<Property>({
            { "DataSource", "" },
            { "DataField", "" },
            { "InitialParent", "GroupBox1" },
        }));
}

constexpr auto kWindowTable = std::to_array<Property>({
    { "Width", 600 },
    { "Height", 530 },
    { "MinWidth", 510 },
    { "MinHeight", 400 },
    { "MaxWidth", 32000 },
    { "MaxHeight", 32000 },
    { "Frame", 0 },
    { "Title", "Veltrane V2" },
    { "CloseButton", true },
    { "Resizeable", true },
    { "MaximizeButton", true },
    { "MinimizeButton", true },
    { "FullScreenButton", false },
    { "Composite", false },
    { "MacProcID", 0 },
    { "FullScreen", false },
    { "LiveResize", true },
    { "Placement", 0 },
    { "Visible", true },
    { "HasBackColor", false },
    { "BackColor", kWhite },
    { "MenuBarVisible", true },
});

constexpr auto kCVTable = Join(Head({ 20, 167, 569, 343, Locks::AllEdges, 0 }),
    std::to_array<Property>({
        { "Enabled", true },
        { "HelpTag", "" },
        { "UseFocusRing", true },
        { "Visible", true },
        { "AcceptFocus", false },
        { "AcceptTabs", false },
        { "DoubleBuffer", false },
        { "EraseBackground", true },
        { "Transparent", true },
        { "InitialParent", "" },
    }));

constexpr auto kGroupBox1Table = Join(Head({ 20, 9, 474, 146, Locks::LeftTop, 7 }),
    std::to_array<Property>({
        { "Caption", "Déposer un fichier sur cette fenêtre (Conversion automatique)" },
        { "Enabled", true },
        { "HelpTag", "" },
        { "Transparent", false },
        { "Visible", true },
    }),
    kPlainText, std::to_array<Property>({ { "InitialParent", "" } }));

constexpr auto kSLQualiteTable = Join(Head({ 223, 63, 251, 23, Locks::LeftTop, 1 }),
    std::to_array<Property>({
        { "Enabled", true },
        { "HelpTag", "" },
        { "Transparent", false },
        { "Visible", true },
        { "Value", 70 },
        { "Minimum", 0 },
        { "Maximum", 100 },
        { "LineStep", 1 },
        { "LiveScroll", true },
        { "PageStep", 10 },
        { "TickStyle", 0 },
        { "InitialParent", "GroupBox1" },
    }));

constexpr auto kCbJPGTable = CheckBoxTable({ 40, 36, 224, 20, Locks::LeftTop, 0 }, "Auto Sauvegarde en JPG");
constexpr auto kCbPNGTable = CheckBoxTable({ 40, 90, 224, 20, Locks::LeftTop, 3 }, "Auto Sauvegarde en PNG");
constexpr auto kTypeQualTable = LabelTable({ 57, 60, 154, 20, Locks::LeftTop, 2 }, "Qualité :", 2);
constexpr auto kLbNbFichTable
    = LabelTable({ 40, 122, 434, 20, Locks::LeftTop, 4 }, "0 fichiers traités depuis l'ouverture.", 0);

} // namespace

const std::span<const Property> kWindow = kWindowTable;
const std::span<const Property> kCV = kCVTable;
const std::span<const Property> kGroupBox1 = kGroupBox1Table;
const std::span<const Property> kCbJPG = kCbJPGTable;
const std::span<const Property> kSLQualite = kSLQualiteTable;
const std::span<const Property> kTypeQual = kTypeQualTable;
const std::span<const Property> kCbPNG = kCbPNGTable;
const std::span<const Property> kLbNbFich = kLbNbFichTable;

} // namespace veltrane::form
