// The resource numbers of the localizer's texts.
#pragma once

#include <cstdint>

namespace addin {

inline constexpr std::int16_t IDS_ADDIN_TITLE = 101;

inline constexpr std::int16_t IDS_NEW_CAPTION = 301;
inline constexpr std::int16_t IDS_NEW_TOOLTIP = 302;
inline constexpr std::int16_t IDS_SENDRECEIVE_CAPTION = 303;
inline constexpr std::int16_t IDS_SENDRECEIVE_TOOLTIP = 304;
inline constexpr std::int16_t IDS_ABOUT_CAPTION = 305;
inline constexpr std::int16_t IDS_ABOUT_TOOLTIP = 306;
inline constexpr std::int16_t IDS_ABOUT_FORM = 307;
inline constexpr std::int16_t IDS_ABOUT_VERSION = 308;
inline constexpr std::int16_t IDS_ABOUT_COPYRIGHT = 310;
inline constexpr std::int16_t IDS_HELP_CAPTION = 311;
inline constexpr std::int16_t IDS_HELP_TOOLTIP = 312;
inline constexpr std::int16_t IDS_HELP_BUTTON = 313;

inline constexpr std::int16_t IDS_OPTIONS_PAGE = 401;
inline constexpr std::int16_t IDS_SERVICE_CENTRE = 402;
inline constexpr std::int16_t IDS_DIFFERENT_NUMBER = 403;
inline constexpr std::int16_t IDS_SEND_AND_RECEIVE = 404;
inline constexpr std::int16_t IDS_AUTO_POLL = 405;
inline constexpr std::int16_t IDS_MINUTES = 407;
inline constexpr std::int16_t IDS_USER_INFORMATION = 409;
inline constexpr std::int16_t IDS_FULL_NAME = 410;
inline constexpr std::int16_t IDS_PHONE_NUMBER = 411;
inline constexpr std::int16_t IDS_FINISH = 412;
inline constexpr std::int16_t IDS_NEXT = 413;
inline constexpr std::int16_t IDS_BACK = 414;
inline constexpr std::int16_t IDS_CANCEL = 415;
inline constexpr std::int16_t IDS_OK = 416;
inline constexpr std::int16_t IDS_WELCOME = 417;
inline constexpr std::int16_t IDS_ASSISTANT_TITLE = 421;
inline constexpr std::int16_t IDS_ASSISTANT_HEADING = 422;
inline constexpr std::int16_t IDS_ASSISTANT_LABEL = 423;
inline constexpr std::int16_t IDS_SIM_FULL_HEADING = 424;
inline constexpr std::int16_t IDS_SIM_FULL_BODY = 425;
inline constexpr std::int16_t IDS_AUTO_REMOVE = 428;

}  // namespace addin
