# What is installed, component by component; each line of them is tested from an installed tree (tests/consumer).
include(GxComponents)

gxtext_component(effect
    DESCRIPTION "Text effects on 8-bit masks"
    HEADERS GxExport.h raster/GxBitmap.h raster/GxBlender.h raster/GxGlyph.h raster/GxMath.h
        effect/GxECore.h effect/GxEffect.h effect/GxProperty.h)

gxtext_component(style ON effect
    DESCRIPTION "Styles of text: reading, writing, effect stacks"
    HEADERS style/EffectStack.h style/Error.h style/FieldTable.h style/LayerStyle.h style/Style.h
        style/StyleSchema.h style/TextSettings.h)

set(objects gxtext_base)
if(GXTEXT_PLATFORM STREQUAL "portable")
    list(APPEND objects gxtext_platform)
endif()
gxtext_component(core ON effect
    DESCRIPTION "Text objects and fonts"
    OBJECTS ${objects}
    MODULES ${GXTEXT_TEXT_MODULES}
    HEADERS base/Error.h base/File.h base/GxLog.h base/GxString.h base/List.h base/Mutex.h
        font/FontManager.h font/GxFontFamily.h
        text/GxFontDrawing.h text/GxLineInfo.h text/GxTextInstanceManager.h text/GxTextObject.h text/GxView.h
    # What text/GxTextObject.h needs: the paint, and what that is made of.
    PLATFORM_HEADERS SkBlendMode.h SkColor.h SkFilterQuality.h SkFont.h SkFontStyle.h SkFontTypes.h SkPaint.h SkRect.h
        SkRefCnt.h SkScalar.h SkStream.h SkTypeface.h SkTypes.h
        cutils/compiler.h hwui/Paint.h minikin/FamilyVariant.h minikin/LocaleList.h)

set(modules libpng libdeflate libwebp harfbuzz>=6 icu-uc>=63)
if(GXTEXT_FONTCONFIG_LIBS_FOUND)
    list(APPEND modules fontconfig)
endif()
gxtext_component(scene ON style core
    DESCRIPTION "Styles and texts into pictures"
    MODULES ${modules}
    HEADERS scene/Arrangement.h scene/FontCatalog.h scene/FontSource.h scene/Picture.h scene/Renderer.h
        scene/SceneError.h)

gxtext_install_package()
