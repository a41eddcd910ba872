#include <font/FontManager.h>
#include <text/GxTextObject.h>

int main() {
    android::Paint paint;
    paint.setJavaFlags(1);
    GxFontEffect::GxTextObject text;
    if (!text.Construct() || !text.SetText(L"a")) return 1;
    text.SetPaint(paint);
    return GxFontEffect::FontManager::GetInstance().IsExisting("/", 0) ? 1 : 0;
}
