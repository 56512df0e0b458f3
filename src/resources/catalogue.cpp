// What the library asks a theme for. A test holds this against the names the
// sources request, and lumo-theme-check holds theme folders against it.

#include "resources/registries_p.h"

namespace
{
QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
}

const lumo::ThemeCatalogue &lumo::themeCatalogue()
{
    static const ThemeCatalogue catalogue = [] {
        ThemeCatalogue c;
        // Icon buttons ask for every state; everything else draws the normal file only.
        const QStringList allStates = words("bt_pagebar_backend bt_pagebar_back bt_pagebar_next bt_pagebar_nextend "
                                            "bt_pagebar_refresh bt_search_dropdown");
        const QStringList normalOnly = words("app_img icon_information icon_warning icon_question bg_tutorial_l bg_tutorial_r "
                                             "bg_tutorial_t bg_tutorial_b bg_tutorial_lt bg_tutorial_rt bg_tutorial_lb "
                                             "bg_tutorial_rb folder bt_next") +
            fileTypeImages();
        for (const QString &name : allStates)
            c.images.append({name, true});
        for (const QString &name : normalOnly)
            c.images.append({name, false});
        c.styleKeys = words("apply_button cancel_button select_paging_button nonselect_paging_button default_button red_button "
                            "reset_button icon_button checkbox radio_button menu label lineedit_label lineedit button_path "
                            "button_path_change_folder_btn button_path_arrow button_path_name_button info_message_box "
                            "warning_message_box confirm_message_box upgrading_message_box message_sheet_processing "
                            "message_sheet_other message_sheet_text message_sheet_informative_text checkbox_warning "
                            "label_checkbox_warning scrollarea scrollbar tree_item paging_bar_border paging_bar_label "
                            "paging_bar_rightmost_label combobox table_header table date_selector filter_search_button "
                            "filter_bar_padding");
        for (QString &key : c.styleKeys)
            key.prepend(QStringLiteral("component."));
        c.captionKeys = words("ok cancel reset wizard_client_upgrade first_page last_page prev_5_pages next_5_pages "
                              "pagebar_refresh today accessible_calendar accessible_calendar_prev_month "
                              "accessible_calendar_next_month sunday monday tuesday wednesday thursday friday saturday "
                              "month_jan month_feb month_mar month_apr month_may month_jun month_jul month_aug month_sep "
                              "month_oct month_nov month_dec");
        return c;
    }();
    return catalogue;
}
