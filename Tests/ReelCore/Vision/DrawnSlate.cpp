#include "DrawnSlate.h"

#include "Support/Tool.h"

#include <array>
#include <filesystem>
#include <sstream>

#include <fmt/format.h>

namespace ReelCore {

namespace {

using Arguments = std::vector<std::string>;
using Design = DrawnSlate::Design;

constexpr const char* fonts = "/usr/share/fonts/opentype/";
constexpr const char* labelFont = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";

void draw(Arguments& arguments, int x, int y, const std::string& text) {
    arguments.insert(arguments.end(), {"-draw", fmt::format("text {},{} '{}'", x, y, text)});
}

void rule(Arguments& arguments, int x1, int y1, int x2, int y2) {
    arguments.insert(arguments.end(), {"-draw", fmt::format("line {},{} {},{}", x1, y1, x2, y2)});
}

void write(Arguments& arguments, const std::string& font, int size) {
    arguments.insert(arguments.end(), {"-font", font, "-pointsize", std::to_string(size)});
}

void startRules(Arguments& arguments, const std::string& ink) {
    arguments.insert(arguments.end(), {"-fill", "none", "-stroke", ink, "-strokewidth", "4",
                                       "-draw", "rectangle 6,6 893,633"});
}

void endRules(Arguments& arguments, const std::string& ink) {
    arguments.insert(arguments.end(), {"-stroke", "none", "-fill", ink});
}

/// The fields' values in the order in which all designs have them.
std::array<std::string, 8> valuesOf(const SlateInfo& slate) {
    return {*slate.production, *slate.scene,  *slate.take, *slate.roll,
            *slate.director,   *slate.camera, *slate.fps,  *slate.date};
}

void drawCells(Arguments& to, const SlateInfo& fields, const std::string& font,
               const std::string& ink) {
    startRules(to, ink);
    for (const int y : {120, 270, 390, 510}) rule(to, 6, y, 893, y);
    rule(to, 300, 120, 300, 270);
    rule(to, 600, 120, 600, 270);
    rule(to, 450, 510, 450, 633);
    endRules(to, ink);
    write(to, labelFont, 22);
    draw(to, 20, 40, "PROD.");
    draw(to, 20, 150, "SCENE");
    draw(to, 315, 150, "TAKE");
    draw(to, 615, 150, "ROLL");
    draw(to, 20, 300, "DIRECTOR");
    draw(to, 20, 420, "CAMERA");
    draw(to, 20, 540, "FPS");
    draw(to, 465, 540, "DATE");
    write(to, font, 64);
    draw(to, 180, 95, *fields.production);
    draw(to, 190, 365, *fields.director);
    draw(to, 190, 485, *fields.camera);
    write(to, font, 84);
    draw(to, 90, 250, *fields.scene);
    draw(to, 420, 250, *fields.take);
    draw(to, 660, 250, *fields.roll);
    write(to, font, 56);
    draw(to, 140, 605, *fields.fps);
    draw(to, 540, 605, *fields.date);
}

void drawTable(Arguments& to, const SlateInfo& fields, const std::string& font,
               const std::string& ink) {
    const std::array<const char*, 8> labels{"PRODUCTION", "SCENE",  "TAKE", "ROLL",
                                            "DIRECTOR",   "CAMERA", "FPS",  "DATE"};
    startRules(to, ink);
    rule(to, 300, 6, 300, 633);
    for (int i = 1; i < 8; ++i) rule(to, 6, 6 + i * 78, 893, 6 + i * 78);
    endRules(to, ink);
    for (int i = 0; i < 8; ++i) {
        write(to, labelFont, 30);
        draw(to, 20, 60 + i * 78, labels.at(static_cast<std::size_t>(i)));
        write(to, font, 56);
        draw(to, 330, 66 + i * 78, valuesOf(fields).at(static_cast<std::size_t>(i)));
    }
}

void drawColumns(Arguments& to, const SlateInfo& fields, const std::string& font) {
    struct Place {
        int x;
        int y;
        const char* label;
    };
    const std::array<Place, 8> places{
        Place{60, 50, "PROD"}, {60, 190, "SCENE"},   {360, 190, "TAKE"}, {660, 190, "ROLL"},
        {60, 350, "DIRECTOR"}, {500, 350, "CAMERA"}, {60, 490, "FPS"},   {500, 490, "DATE"}};
    for (std::size_t i = 0; i < places.size(); ++i) {
        write(to, labelFont, 26);
        draw(to, places[i].x, places[i].y, places[i].label);
        write(to, font, i < 4 ? 64 : 50);
        draw(to, places[i].x, places[i].y + (i < 4 ? 75 : 70), valuesOf(fields).at(i));
    }
}

void drawLines(Arguments& to, const SlateInfo& fields, const std::string& font) {
    write(to, font, 52);
    draw(to, 40, 80, "PRODUCTION: " + *fields.production);
    draw(to, 40, 170, "SCENE: " + *fields.scene);
    draw(to, 500, 170, "TAKE: " + *fields.take);
    draw(to, 40, 260, "ROLL: " + *fields.roll);
    draw(to, 40, 350, "DIRECTOR: " + *fields.director);
    draw(to, 40, 440, "CAMERA: " + *fields.camera);
    draw(to, 40, 530, *fields.fps + " FPS");
    draw(to, 40, 610, "DATE: " + *fields.date);
}

void drawBoard(const DrawnSlate& slate, const SlateInfo& fields, const URL& board) {
    Arguments to{"-size", "900x640", "xc:" + slate.paper, "-fill", slate.ink};
    const std::string font = fonts + slate.font;
    switch (slate.design) {
        case Design::cells:
            drawCells(to, fields, font, slate.ink);
            break;
        case Design::table:
            drawTable(to, fields, font, slate.ink);
            break;
        case Design::columns:
            drawColumns(to, fields, font);
            break;
        case Design::lines:
            drawLines(to, fields, font);
            break;
    }
    to.push_back(board.native());
    TestSupport::outputOf("convert", to);
}

}  // namespace

void drawFrame(const DrawnSlate& slate, const SlateInfo& fields, const URL& picture) {
    const URL board = picture.native() + "-board.png";
    drawBoard(slate, fields, board);
    std::istringstream corners(slate.corners);
    std::string places;
    for (const char* from : {"0,0", "900,0", "900,640", "0,640"}) {
        std::string to;
        corners >> to;
        places += fmt::format("{} {} ", from, to);
    }
    Arguments arguments{slate.background, "-resize",   "1280x720^", "-gravity",
                        "center",         "-extent",   "1280x720",  "-gravity",
                        "none",           "-modulate", "70",        "+repage"};
    arguments.insert(arguments.end(),
                     {"(", board.native(), "-alpha", "set", "-virtual-pixel", "transparent",
                      "+distort", "Perspective", places, ")", "-layers", "flatten", "-crop",
                      "1280x720+0+0", "+repage", "-seed", "1"});
    arguments.insert(arguments.end(), slate.effects.begin(), slate.effects.end());
    arguments.push_back(picture.native());
    TestSupport::outputOf("convert", arguments);
    std::filesystem::remove(board);
}

void drawText(const std::vector<std::string>& lines, const URL& picture) {
    Arguments arguments{"-size", "1280x720", "xc:white", "-fill", "black"};
    write(arguments, labelFont, 60);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        draw(arguments, 100, 100 + static_cast<int>(i) * 120, lines[i]);
    }
    arguments.push_back(picture.native());
    TestSupport::outputOf("convert", arguments);
}

std::string slatesMissing() {
    if (!TestSupport::hasTool("convert")) return "needs ImageMagick";
    for (const char* font :
         {"comic-neue/ComicNeue-Bold.otf", "../truetype/humor-sans/Humor-Sans.ttf"}) {
        if (!std::filesystem::exists(std::string(fonts) + font))
            return std::string("needs the font ") + font;
    }
    return std::filesystem::exists(labelFont) ? "" : "needs the font DejaVu Sans";
}

}  // namespace ReelCore
