#include "subtitles/subtitle_style.h"

#include "app/settings.h"

namespace brindlecast {

namespace {

// What can't be read leaves the field as it was. A signed field takes the number's bits as they stand.
template <class Field>
void ReadInto(Field& field, SettingsStore& store, const SettingInfo& info) {
    if (const auto value = ReadPresentSetting(store, info)) {
        field = static_cast<Field>(*value);
    }
}

void ReadTenthsInto(double& field, SettingsStore& store, const SettingInfo& info) {
    if (const auto value = ReadPresentSetting(store, info)) {
        field = *value / 10.0;
    }
}

} // namespace

SubtitleStyle ReadSubtitleStyle(SettingsStore& store) {
    SubtitleStyle style;
    static_cast<void>(ReadStringSetting(store, settings::kSubFontName.name, style.fontName));
    ReadInto(style.fontSize, store, settings::kSubFontSize);
    ReadTenthsInto(style.outline, store, settings::kSubOutline);
    ReadTenthsInto(style.shadow, store, settings::kSubShadow);
    ReadInto(style.bold, store, settings::kSubBold);
    ReadInto(style.italic, store, settings::kSubItalic);
    ReadInto(style.primaryColour, store, settings::kSubPrimaryColor);
    ReadInto(style.outlineColour, store, settings::kSubOutlineColor);
    ReadInto(style.shadowColour, store, settings::kSubShadowColor);
    ReadInto(style.marginBottom, store, settings::kSubMarginBottom);
    ReadInto(style.alignment, store, settings::kSubAlignment);
    return style;
}

} // namespace brindlecast
