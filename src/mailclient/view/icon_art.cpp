#include "mailclient/view/icon_art.h"

#include <array>

#include "mailclient/built_in_commands.h"

namespace mailclient {
namespace {

constexpr Color ink{58, 74, 96};
constexpr Color paper{255, 255, 255};
constexpr Color shade{216, 226, 238};
constexpr Color blue{52, 116, 190};
constexpr Color paleBlue{150, 190, 232};
constexpr Color green{46, 142, 86};
constexpr Color amber{240, 184, 72};
constexpr Color darkAmber{196, 138, 34};
constexpr Color red{200, 60, 54};
constexpr Color grey{132, 142, 156};

void envelope(Canvas& c, bool open, double top = 3.5) {
  const Color edge = open ? grey : ink;
  c.rectangle(0.75, top, 14.5, 9.5, edge, 1);
  c.rectangle(1.75, top + 1, 12.5, 7.5, open ? paper : Color{255, 244, 206}, 0.4);
  c.line({{1.6, top + 1.2}, {8, top + 5.6}, {14.4, top + 1.2}}, 1.1, edge);
}

void bubble(Canvas& c, bool read) {
  const Color edge = read ? grey : green;
  c.rectangle(0.75, 1.75, 14.5, 9.75, edge, 3);
  c.polygon({{3, 11}, {3.4, 15}, {8, 11}}, edge);
  c.rectangle(1.9, 2.9, 12.2, 7.45, read ? paper : Color{208, 240, 218}, 2);
  c.line({{4, 5.4}, {12, 5.4}}, 1.1, edge);
  c.line({{4, 7.9}, {9.5, 7.9}}, 1.1, edge);
}

void person(Canvas& c, double x, double y, double scale, Color color) {
  c.ellipse({x, y}, 2.9 * scale, 3.1 * scale, color);
  c.polygon({{x - 5 * scale, y + 9.5 * scale},
             {x - 4.6 * scale, y + 6 * scale},
             {x - 2.4 * scale, y + 4 * scale},
             {x + 2.4 * scale, y + 4 * scale},
             {x + 4.6 * scale, y + 6 * scale},
             {x + 5 * scale, y + 9.5 * scale}},
            color);
}

void folder(Canvas& c) {
  c.rectangle(0.75, 2.5, 7, 4, darkAmber, 1);
  c.rectangle(0.75, 4, 14.5, 10, darkAmber, 1);
  c.rectangle(1.75, 5.5, 12.5, 7.5, amber, 0.5);
}

void tray(Canvas& c) {
  c.polygon({{0.75, 9}, {4.5, 9}, {5.8, 11}, {10.2, 11}, {11.5, 9}, {15.25, 9}, {15.25, 15}, {0.75, 15}}, ink);
  c.polygon({{1.9, 10.1}, {4, 10.1}, {5.2, 12.1}, {10.8, 12.1}, {12, 10.1}, {14.1, 10.1}, {14.1, 13.9}, {1.9, 13.9}},
            shade);
}

void arrow(Canvas& c, Point tip, double directionX, double directionY, double length, Color color) {
  const double sideX = directionY;
  const double sideY = -directionX;
  const auto at = [&](double along, double aside) {
    return Point{tip.x - directionX * along + sideX * aside, tip.y - directionY * along + sideY * aside};
  };
  c.polygon({at(0, 0), at(4.2, 4), at(4.2, 1.4), at(length, 1.4), at(length, -1.4), at(4.2, -1.4), at(4.2, -4)}, color);
}

void answerArrow(Canvas& c, double x, double direction, Color color) {
  c.polygon({{x, 7.5},
             {x + 5 * direction, 2.5},
             {x + 5 * direction, 5.6},
             {x + 9 * direction, 6.4},
             {x + 11 * direction, 9.4},
             {x + 11.2 * direction, 13.4},
             {x + 9 * direction, 10.4},
             {x + 5 * direction, 9.4},
             {x + 5 * direction, 12.5}},
            color);
}

void bin(Canvas& c) {
  c.rectangle(2, 3.2, 12, 1.8, grey, 0.8);
  c.rectangle(6, 1.6, 4, 2, grey, 0.8);
  c.polygon({{3.2, 5.8}, {12.8, 5.8}, {12, 15}, {4, 15}}, grey);
  c.polygon({{4.5, 6.8}, {11.5, 6.8}, {10.9, 14}, {5.1, 14}}, shade);
  c.line({{6.6, 8}, {6.8, 13}}, 1, grey);
  c.line({{9.4, 8}, {9.2, 13}}, 1, grey);
}

void cross(Canvas& c) {
  c.line({{3, 3}, {13, 13}}, 2.6, red);
  c.line({{13, 3}, {3, 13}}, 2.6, red);
}

void newMark(Canvas& c) {
  c.ellipse({12.4, 3.6}, 3.4, 3.4, amber);
  c.line({{12.4, 1.6}, {12.4, 5.6}}, 1.2, paper);
  c.line({{10.4, 3.6}, {14.4, 3.6}}, 1.2, paper);
}

void card(Canvas& c) {
  c.rectangle(0.75, 2.5, 14.5, 11, ink, 1);
  c.rectangle(1.75, 3.5, 12.5, 9, paper, 0.4);
  person(c, 5, 6.6, 0.52, blue);
  c.line({{9, 6.5}, {13, 6.5}}, 1.1, grey);
  c.line({{9, 9.2}, {13, 9.2}}, 1.1, grey);
}

void disk(Canvas& c) {
  c.rectangle(1.5, 1.5, 13, 13, blue, 1);
  c.rectangle(4, 1.5, 8, 5, paper);
  c.rectangle(8.8, 2.3, 2, 3.2, blue);
  c.rectangle(3.5, 8.5, 9, 6, shade);
}

void drafts(Canvas& c) {
  c.rectangle(2, 1, 10, 14, grey, 0.8);
  c.rectangle(3, 2, 8, 12, paper);
  c.line({{4.4, 5}, {9.6, 5}}, 1, paleBlue);
  c.line({{4.4, 8}, {9.6, 8}}, 1, paleBlue);
  c.line({{14, 4}, {8, 12}}, 2, amber);
  c.polygon({{8.9, 12.3}, {7.1, 11.2}, {6.8, 14}}, ink);
}

void application(Canvas& c) {
  c.rectangle(0.5, 0.5, 15, 15, blue, 3);
  c.rectangle(2.4, 3.2, 11.2, 8.2, paper, 1);
  c.line({{2.9, 3.9}, {8, 7.8}, {13.1, 3.9}}, 1, blue);
  c.rectangle(8.2, 8.6, 6.4, 5.2, green, 1.6);
  c.line({{9.8, 10.4}, {13, 10.4}}, 0.8, paper);
  c.line({{9.8, 12}, {11.8, 12}}, 0.8, paper);
}

struct Picture {
  Art art;
  void (*paint)(Canvas&);
};

constexpr std::array pictures{
    Picture{Art::MailUnread, [](Canvas& c) { envelope(c, false); }},
    Picture{Art::MailRead, [](Canvas& c) { envelope(c, true); }},
    Picture{Art::TextUnread, [](Canvas& c) { bubble(c, false); }},
    Picture{Art::TextRead, [](Canvas& c) { bubble(c, true); }},
    Picture{Art::Contact, [](Canvas& c) { card(c); }},
    Picture{Art::Store, [](Canvas& c) { application(c); }},
    Picture{Art::Inbox,
            [](Canvas& c) {
              tray(c);
              arrow(c, {8, 9}, 0, 1, 8, blue);
            }},
    Picture{Art::Drafts, [](Canvas& c) { drafts(c); }},
    Picture{Art::Outbox,
            [](Canvas& c) {
              tray(c);
              arrow(c, {8, 0.8}, 0, -1, 8, green);
            }},
    Picture{Art::Sent,
            [](Canvas& c) {
              envelope(c, true, 2);
              arrow(c, {15.5, 12}, 1, 0, 9, green);
            }},
    Picture{Art::Deleted, [](Canvas& c) { bin(c); }},
    Picture{Art::Contacts,
            [](Canvas& c) {
              person(c, 5.2, 5.4, 0.85, paleBlue);
              person(c, 10, 5, 1, blue);
            }},
    Picture{Art::Folder, [](Canvas& c) { folder(c); }},
    Picture{Art::NewMail,
            [](Canvas& c) {
              envelope(c, false, 4.5);
              newMark(c);
            }},
    Picture{Art::NewContact,
            [](Canvas& c) {
              card(c);
              newMark(c);
            }},
    Picture{Art::Reply, [](Canvas& c) { answerArrow(c, 2, 1, blue); }},
    Picture{Art::ReplyAll,
            [](Canvas& c) {
              answerArrow(c, 0.5, 1, paleBlue);
              answerArrow(c, 4, 1, blue);
            }},
    Picture{Art::Forward, [](Canvas& c) { answerArrow(c, 14, -1, green); }},
    Picture{Art::Delete, [](Canvas& c) { cross(c); }},
    Picture{Art::Send,
            [](Canvas& c) {
              envelope(c, false, 2);
              arrow(c, {15.5, 12}, 1, 0, 9, green);
            }},
    Picture{Art::Save, [](Canvas& c) { disk(c); }},
    Picture{Art::Application, [](Canvas& c) { application(c); }},
};

}  // namespace

Canvas draw(Art art, int size) {
  Canvas canvas(size);
  for (const Picture& p : pictures)
    if (p.art == art) p.paint(canvas);
  return canvas;
}

Art artOf(FolderKind kind) {
  constexpr std::array arts{Art::Inbox,  Art::Outbox,   Art::Sent,   Art::Deleted,
                            Art::Drafts, Art::Contacts, Art::Folder, Art::Folder};
  return arts[static_cast<std::size_t>(kind)];  // in the order of the kinds
}

Art artOf(const Message& message) {
  constexpr std::int32_t contact = 40;  // olContact
  if (isOfClass(message[Text::MessageClass], textMessageClass)) return message.unread ? Art::TextUnread : Art::TextRead;
  if (kindOf(message[Text::MessageClass]) == contact) return Art::Contact;
  return message.unread ? Art::MailUnread : Art::MailRead;
}

Art artOfFace(std::int32_t faceId) {
  struct Face {
    std::int32_t id;
    Art art;
  };
  constexpr std::array faces{Face{face::newMail, Art::NewMail}, Face{face::newContact, Art::NewContact},
                             Face{face::reply, Art::Reply},     Face{face::replyAll, Art::ReplyAll},
                             Face{face::forward, Art::Forward}, Face{face::erase, Art::Delete}};
  for (const Face& f : faces)
    if (f.id == faceId) return f.art;
  return Art::None;
}

}  // namespace mailclient
