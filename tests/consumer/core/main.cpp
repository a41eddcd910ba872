#include <text/GxTextObject.h>

int main() {
    GxFontEffect::GxTextObject text;
    return text.Construct() && text.SetText(L"a") ? 0 : 1;
}
