#include "SvgPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "zefcore/ZEFVersion.h"
#include "zefcore/geometry/Distances.h"

namespace {

constexpr double kCanvasWidth = 1380;
constexpr double kCanvasHeight = 790;
// The camera panel: projected x and y from -1 to 1.
constexpr double kViewX = 20, kViewY = 80, kViewWidth = 800, kViewHeight = 600;
// The top view panel.
constexpr double kTopX = 850, kTopY = 80, kTopWidth = 510, kTopHeight = 600;
// The world area the top view shows (x across, z down the page, far side on top).
constexpr double kTopWorldXLow = -36, kTopWorldXHigh = 36;
constexpr double kTopWorldZLow = -64, kTopWorldZHigh = 44;
// Coordinates are clamped to this margin around the canvas: huge projected
// rectangles of boxes across the eye plane stay drawable.
constexpr double kClampMargin = 2000;

const char *const kFont = "DejaVu Sans, Verdana, Arial, sans-serif";
const char *const kInFront = "#2b6cb0";
const char *const kAcross = "#dd6b20";
const char *const kBehind = "#805ad5";
const char *const kRectangle = "#2f855a";
const char *const kPicked = "#c53030";
const char *const kInk = "#2d3748";
const char *const kPanel = "#f7fafc";

struct Point {
    double x, y;
};

class Svg {
public:
    // Appends printf-formatted text.
    template <typename... Args>
    void add(const char *format, Args... args) {
        char buffer[512];
        const int n = std::snprintf(buffer, sizeof buffer, format, args...);
        if (n > 0)
            m_text.append(buffer, std::min<std::size_t>(static_cast<std::size_t>(n), sizeof buffer - 1));
    }
    void raw(const char *text) { m_text += text; }
    const std::string &text() const { return m_text; }

private:
    std::string m_text;
};

double clampCoordinate(double v) {
    if (!std::isfinite(v))
        return 0.0;
    return std::max(-kClampMargin, std::min(kCanvasWidth + kClampMargin, v));
}

Point viewPoint(double x, double y) {
    return {clampCoordinate(kViewX + (x + 1.0) * kViewWidth * 0.5),
            clampCoordinate(kViewY + (1.0 - y) * kViewHeight * 0.5)};
}

double topScale() {
    return std::min(kTopWidth / (kTopWorldXHigh - kTopWorldXLow),
                    kTopHeight / (kTopWorldZHigh - kTopWorldZLow));
}

Point topPoint(double x, double z) {
    const double s = topScale();
    const double cx = kTopX + kTopWidth * 0.5, cy = kTopY + kTopHeight * 0.5;
    return {clampCoordinate(cx + (x - 0.5 * (kTopWorldXLow + kTopWorldXHigh)) * s),
            clampCoordinate(cy + (z - 0.5 * (kTopWorldZLow + kTopWorldZHigh)) * s)};
}

const char *positionColour(BoundingBoxAlgo::BBoxPosition position) {
    switch (position) {
    case BoundingBoxAlgo::BBoxInFront:
        return kInFront;
    case BoundingBoxAlgo::BBoxAcross:
        return kAcross;
    case BoundingBoxAlgo::BBoxBehind:
        return kBehind;
    default:
        return kInk;
    }
}

void rectangle(Svg &svg, Point a, Point b, const char *stroke, double width, const char *fill,
               double fillOpacity, const char *dash) {
    const double x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    svg.add("<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" stroke=\"%s\" stroke-width=\"%.1f\""
            " fill=\"%s\" fill-opacity=\"%.2f\"%s%s%s/>\n",
            x, y, std::fabs(b.x - a.x), std::fabs(b.y - a.y), stroke, width, fill, fillOpacity,
            dash ? " stroke-dasharray=\"" : "", dash ? dash : "", dash ? "\"" : "");
}

void line(Svg &svg, Point a, Point b, const char *stroke, double width, const char *dash) {
    svg.add(
        "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"%s\" stroke-width=\"%.1f\"%s%s%s/>\n",
        a.x, a.y, b.x, b.y, stroke, width, dash ? " stroke-dasharray=\"" : "", dash ? dash : "",
        dash ? "\"" : "");
}

void text(Svg &svg, double x, double y, double size, const char *weight, const char *anchor,
          const char *content) {
    svg.add("<text x=\"%.1f\" y=\"%.1f\" font-family=\"%s\" font-size=\"%.0f\" font-weight=\"%s\""
            " text-anchor=\"%s\" fill=\"%s\">%s</text>\n",
            x, y, kFont, size, weight, anchor, kInk, content);
}

// Projects p as the library's camera projection does; false for a point behind.
bool project(const TourScene &scene, const Vector3f &p, Point &out) {
    Vector3f q;
    cameraProjPoint(q, p, scene.camera.viewProjection, scene.camera.depthLimit);
    if (q.z() > scene.camera.depthLimit)
        return false;
    out = viewPoint(q.x(), q.y());
    return true;
}

void drawCameraView(Svg &svg, const TourScene &scene, const TourPick &pick) {
    svg.add(
        "<clipPath id=\"camera\"><rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"/></clipPath>\n",
        kViewX, kViewY, kViewWidth, kViewHeight);
    rectangle(svg, {kViewX, kViewY}, {kViewX + kViewWidth, kViewY + kViewHeight}, "none", 0, kPanel, 1,
              nullptr);
    svg.raw("<g clip-path=\"url(#camera)\">\n");

    // Far boxes first, so that near ones are drawn over them.
    std::vector<const TourBox *> order;
    for (const TourBox &box : scene.boxes)
        order.push_back(&box);
    std::stable_sort(order.begin(), order.end(),
                     [](const TourBox *a, const TourBox *b) { return a->viewDepth > b->viewDepth; });

    for (const TourBox *box : order) {
        if (box->position != BoundingBoxAlgo::BBoxInFront && box->position != BoundingBoxAlgo::BBoxAcross)
            continue; // nothing of a box behind the eye is on the screen
        const char *colour = positionColour(box->position);
        if (box->position == BoundingBoxAlgo::BBoxInFront) {
            // The box itself, edge by edge.
            Point corners[8];
            bool all = true;
            for (int k = 0; k < 8; ++k)
                all = project(scene, box->corners[k], corners[k]) && all;
            if (all) {
                svg.add("<path stroke=\"%s\" stroke-width=\"0.7\" stroke-opacity=\"0.4\" fill=\"none\" d=\"",
                        colour);
                for (const auto &edge : kTourBoxEdges)
                    svg.add("M%.1f %.1fL%.1f %.1f", corners[edge[0]].x, corners[edge[0]].y,
                            corners[edge[1]].x, corners[edge[1]].y);
                svg.raw("\"/>\n");
            }
        }
        if (!box->screen.isInitialized())
            continue;
        const Point a = viewPoint(box->screen.m_min.x(), box->screen.m_min.y());
        const Point b = viewPoint(box->screen.m_max.x(), box->screen.m_max.y());
        const bool across = box->position == BoundingBoxAlgo::BBoxAcross;
        rectangle(svg, a, b, colour, across ? 2.0 : 1.0, colour, box->meetsRect ? 0.22 : 0.0,
                  across ? "9 5" : nullptr);
    }

    // The screen rectangle.
    rectangle(svg, viewPoint(scene.rect.m_min.x(), scene.rect.m_min.y()),
              viewPoint(scene.rect.m_max.x(), scene.rect.m_max.y()), kRectangle, 3.0, "none", 0.0, "12 6");

    // The picked triangle and the point where the ray meets it.
    Point a, b, c, p;
    if (pick.found && project(scene, pick.a, a) && project(scene, pick.b, b) && project(scene, pick.c, c) &&
        project(scene, pick.point, p)) {
        svg.add("<polygon points=\"%.1f,%.1f %.1f,%.1f %.1f,%.1f\" fill=\"%s\" fill-opacity=\"0.75\""
                " stroke=\"#742a2a\" stroke-width=\"1.5\"/>\n",
                a.x, a.y, b.x, b.y, c.x, c.y, kPicked);
        svg.add("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"7\" fill=\"none\" stroke=\"%s\" stroke-width=\"2\"/>\n",
                p.x, p.y, kPicked);
        line(svg, {p.x - 14, p.y}, {p.x + 14, p.y}, kPicked, 2.0, nullptr);
        line(svg, {p.x, p.y - 14}, {p.x, p.y + 14}, kPicked, 2.0, nullptr);
    }
    svg.raw("</g>\n");
    rectangle(svg, {kViewX, kViewY}, {kViewX + kViewWidth, kViewY + kViewHeight}, kInk, 1.5, "none", 0,
              nullptr);
    text(svg, kViewX, kViewY - 10, 15, "bold", "start", "What the camera sees");
}

void drawTopView(Svg &svg, const TourScene &scene, const TourPick &pick) {
    svg.add("<clipPath id=\"top\"><rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"/></clipPath>\n",
            kTopX, kTopY, kTopWidth, kTopHeight);
    rectangle(svg, {kTopX, kTopY}, {kTopX + kTopWidth, kTopY + kTopHeight}, "none", 0, kPanel, 1, nullptr);
    svg.raw("<g clip-path=\"url(#top)\">\n");

    const TourCamera &camera = scene.camera;
    const double eyeX = camera.eye.x(), eyeZ = camera.eye.z();
    const double fx = camera.forward.x(), fz = camera.forward.z();
    const double rx = camera.right.x(), rz = camera.right.z();
    const double halfWidth = std::tan(double(camera.fovY) * 0.5) * camera.aspect; // screen x = 1
    const double reach = 400;

    // The camera's field, the screen rectangle's wedge and the eye plane.
    const double fieldX[2] = {-1.0, 1.0};
    const double rectX[2] = {scene.rect.m_min.x(), scene.rect.m_max.x()};
    for (int side = 0; side < 2; ++side) {
        const double k = fieldX[side] * halfWidth, m = rectX[side] * halfWidth;
        line(svg, topPoint(eyeX, eyeZ), topPoint(eyeX + (fx + k * rx) * reach, eyeZ + (fz + k * rz) * reach),
             kInk, 1.2, nullptr);
        line(svg, topPoint(eyeX, eyeZ), topPoint(eyeX + (fx + m * rx) * reach, eyeZ + (fz + m * rz) * reach),
             kRectangle, 2.0, "12 6");
    }
    line(svg, topPoint(eyeX - rx * reach, eyeZ - rz * reach), topPoint(eyeX + rx * reach, eyeZ + rz * reach),
         kInk, 1.0, "4 4");

    // Each box's world box, seen from above.
    for (const TourBox &box : scene.boxes) {
        const char *colour = positionColour(box.position);
        rectangle(svg, topPoint(box.world.m_min.x(), box.world.m_min.z()),
                  topPoint(box.world.m_max.x(), box.world.m_max.z()), colour, 1.0, colour,
                  box.meetsRect ? 0.45 : 0.08, nullptr);
    }

    // The eye and the picking ray.
    const Point eye = topPoint(eyeX, eyeZ);
    if (pick.found) {
        const Point hit = topPoint(pick.point.x(), pick.point.z());
        line(svg, eye, hit, kPicked, 2.0, nullptr);
        svg.add("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"4\" fill=\"%s\"/>\n", hit.x, hit.y, kPicked);
    }
    svg.add("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"5\" fill=\"%s\"/>\n", eye.x, eye.y, kInk);
    svg.raw("</g>\n");
    const Point label = topPoint(eyeX + rx * 10, eyeZ + rz * 10);
    text(svg, label.x, label.y + 16, 12, "normal", "middle", "eye plane");
    text(svg, eye.x, eye.y + 20, 12, "normal", "middle", "eye");
    rectangle(svg, {kTopX, kTopY}, {kTopX + kTopWidth, kTopY + kTopHeight}, kInk, 1.5, "none", 0, nullptr);
    text(svg, kTopX, kTopY - 10, 15, "bold", "start", "The scene from above");
}

void legendItem(Svg &svg, double x, double y, const char *colour, double fillOpacity, const char *dash,
                const char *label) {
    rectangle(svg, {x, y - 12}, {x + 22, y + 2}, colour, dash ? 2.0 : 1.5, colour, fillOpacity, dash);
    text(svg, x + 30, y, 13, "normal", "start", label);
}

void drawLegend(Svg &svg, const TourScene &scene, const TourProjection &projection, const TourPick &pick) {
    char label[160];
    const double y1 = kViewY + kViewHeight + 36, y2 = y1 + 26, y3 = y2 + 26;
    std::snprintf(label, sizeof label, "in front of the eye: %d boxes", projection.inFront);
    legendItem(svg, kViewX, y1, kInFront, 0.0, nullptr, label);
    std::snprintf(label, sizeof label, "across the eye plane: %d", projection.across);
    legendItem(svg, kViewX, y2, kAcross, 0.0, "9 5", label);
    std::snprintf(label, sizeof label, "behind the eye: %d (seen from above only)", projection.behind);
    legendItem(svg, kViewX, y3, kBehind, 0.0, nullptr, label);

    const double x2 = kViewX + 420;
    std::snprintf(label, sizeof label, "filled: meets the screen rectangle (%d, %d wholly inside)",
                  projection.meetRect, projection.entirelyInside);
    legendItem(svg, x2, y1, kInFront, 0.22, nullptr, label);
    legendItem(svg, x2, y2, kRectangle, 0.0, "12 6", "the screen rectangle");
    if (pick.found)
        std::snprintf(label, sizeof label, "picked: triangle %d of box #%d, %.2f from the eye", pick.triangle,
                      scene.boxes[static_cast<std::size_t>(pick.box)].id, double(pick.distance));
    else
        std::snprintf(label, sizeof label, "picked: nothing");
    legendItem(svg, x2, y3, kPicked, 0.75, nullptr, label);
}

} // namespace

bool writeTourSvg(const std::string &path, const TourScene &scene, const TourProjection &projection,
                  const TourPick &pick) {
    Svg svg;
    svg.raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    svg.add("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" viewBox=\"0 0 %.0f "
            "%.0f\">\n",
            kCanvasWidth, kCanvasHeight, kCanvasWidth, kCanvasHeight);
    rectangle(svg, {0, 0}, {kCanvasWidth, kCanvasHeight}, "none", 0, "#ffffff", 1, nullptr);
    char title[160];
    std::snprintf(title, sizeof title, "ZEFCore %s tour: seed %u, %d boxes", ZEFCORE_VERSION,
                  static_cast<unsigned>(scene.seed), static_cast<int>(scene.boxes.size()));
    text(svg, kViewX, 34, 20, "bold", "start", title);
    drawCameraView(svg, scene, pick);
    drawTopView(svg, scene, pick);
    drawLegend(svg, scene, projection, pick);
    svg.raw("</svg>\n");

    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const std::string &content = svg.text();
    const bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    const bool closed = std::fclose(file) == 0;
    return written && closed;
}
