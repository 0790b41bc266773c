#include "addin/host/basCommandBars.h"

#include "addin/platform/on_error.h"

namespace addin {

office::CommandBarButton AddCommandBarButton(StringView ProgId, const office::CommandBar& Bar, StringView Caption,
                                             StringView Tag, StringView TooltipText, std::int16_t FaceId,
                                             std::int16_t BeginGroup, std::int16_t Style) {
  office::CommandBarControl control;
  onErrorResumeNext([&] { control = Bar.FindControl(missing, missing, Tag, missing, missing); },
                    [&] {
                      if (!control)
                        control = Bar.Controls().Add(office::msoControlButton, missing, Tag, missing, missing);
                    });
  auto button = as<office::CommandBarButton>(control);
  onErrorResumeNext([&] { button.Caption(Caption); }, [&] { button.Tag(Tag); },
                    [&] {
                      if (Style != office::msoButtonCaption) button.FaceId(FaceId);
                    },
                    [&] { button.Style(Style); }, [&] { button.TooltipText(TooltipText); },
                    [&] { button.BeginGroup(BeginGroup != 0); },
                    // The mail client routes the click to the add-in that this names.
                    [&] { button.OnAction(concat(u"<!", ProgId, u">")); });
  return button;
}

}  // namespace addin
