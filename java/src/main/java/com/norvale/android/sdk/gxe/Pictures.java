package com.norvale.android.sdk.gxe;

import android.graphics.Bitmap;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The pictures of a style's patterns, as the natives take them. */
final class Pictures {
    private final Map<String, Bitmap> byName = new LinkedHashMap<>();

    /** Throws StyleException, with the place, for a picture that there is not. */
    Pictures(TextStyle style, PatternLoader loader) {
        List<TextEffect> effects = style.getEffects();
        for (int i = 0; i < effects.size(); i++) {
            TextEffect effect = effects.get(i);
            String place = "$.effects[" + i + "]";
            load(effect, place + ".pattern", loader);
            if (effect instanceof StrokeEffect) {
                load(((StrokeEffect) effect).getFill(), place + ".fill.pattern", loader);
            }
        }
    }

    private void load(TextEffect effect, String place, PatternLoader loader) {
        if (!(effect instanceof PatternEffect) || !effect.isEnabled()) {
            return;
        }
        String name = ((PatternEffect) effect).getPattern();
        if (byName.containsKey(name)) {
            return;
        }
        if (loader == null) {
            throw mistake(place, "nothing loads \"" + name + "\"; call setPatternLoader", null);
        }
        try {
            Bitmap picture = loader.load(name);
            if (picture == null) {
                throw mistake(place, "there is no picture \"" + name + "\"", null);
            }
            byName.put(name, picture);
        } catch (IOException e) {
            throw mistake(place, "there is no picture \"" + name + "\": " + e.getMessage(), e);
        }
    }

    private static StyleException mistake(String place, String reason, Throwable cause) {
        return new StyleException(
                Collections.singletonList(new StyleMistake(place, reason, "")), cause);
    }

    String[] names() {
        return byName.keySet().toArray(new String[0]);
    }

    int[] widths() {
        int[] widths = new int[byName.size()];
        int i = 0;
        for (Bitmap picture : byName.values()) {
            widths[i++] = picture.getWidth();
        }
        return widths;
    }

    /** 0xAARRGGBB, straight. */
    int[][] pixels() {
        List<int[]> all = new ArrayList<>();
        for (Bitmap picture : byName.values()) {
            int width = picture.getWidth();
            int[] pixels = new int[width * picture.getHeight()];
            picture.getPixels(pixels, 0, width, 0, 0, width, picture.getHeight());
            all.add(pixels);
        }
        return all.toArray(new int[0][]);
    }
}
