package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.assertNotSame;
import static org.junit.Assert.assertThrows;

import android.app.Activity;
import android.content.res.Configuration;
import android.graphics.Color;
import android.graphics.Typeface;
import android.os.Bundle;
import android.util.TypedValue;
import android.view.LayoutInflater;
import android.view.ViewGroup;
import com.norvale.android.sdk.gxe.sample.R;
import org.junit.After;
import org.junit.Before;
import org.junit.Test;
import org.robolectric.Robolectric;
import org.robolectric.RuntimeEnvironment;
import org.robolectric.android.controller.ActivityController;

/** Views in an app: from its layout files, through changes of the screen, in activities that come back. */
public class AppTest extends NativeTest {
    private static final String[] SCREENS = {"mdpi", "xhdpi", "xxxhdpi"};

    @Before
    public void forgetPictures() {
        PictureCache.clear();
    }

    @After
    public void restoreScreen() {
        RuntimeEnvironment.setFontScale(1);
    }

    private static ViewGroup inflateTitles() {
        ViewGroup titles = (ViewGroup) LayoutInflater.from(context()).inflate(R.layout.titles, null);
        return layOut(titles, 0);
    }

    private static GxTextView titleInCode(float sizeInSp) {
        GxTextView view = new GxTextView(context());
        view.setTextStyle(new TextStyle.Builder().setUnit(TextStyle.Unit.DP).setText("Title")
                .setPadding(4).setColor(0xFF336699)
                .addEffect(new StrokeEffect.Builder().setSize(2).setColor(Color.GREEN).build())
                .build());
        view.setTextSize(TypedValue.COMPLEX_UNIT_SP, sizeInSp);
        return layOut(view, 0);
    }

    @Test
    public void attributesOfALayoutFileAndOfAStyleReachTheView() {
        for (String screen : SCREENS) {
            RuntimeEnvironment.setQualifiers("port-" + screen);
            int[] expected = pixels(draw(titleInCode(30), 0));
            ViewGroup titles = inflateTitles();
            for (int i = 0; i < 2; i++) {
                GxTextView view = (GxTextView) titles.getChildAt(i);
                assertArrayEquals(screen + i, expected, pixels(draw(view, 0)));
                assertEquals(1, view.getTextStyle().getEffects().size());
            }
        }
    }

    @Test
    public void aFontOfTheResourcesIsMeasuredAndDrawn() {
        RuntimeEnvironment.setQualifiers("port-mdpi");
        int[][] drawn = new int[2][];
        String[] fonts = {"@font/title", LATIN_BOLD};
        for (int i = 0; i < 2; i++) {
            GxTextView view = new GxTextView(context());
            view.setTextStyle(titleStyle("Title").toBuilder().setFont(fonts[i]).build());
            drawn[i] = pixels(draw(layOut(view, 0), 0));
            assertEquals(1, view.getRenderCount());
        }
        assertArrayEquals(drawn[1], drawn[0]);
        // Named in the layout file it stays until another is set.
        GxTextView inflated = (GxTextView) inflateTitles().getChildAt(2);
        inflated.setTextStyle(titleStyle("Title").toBuilder().setFont(null).build());
        assertArrayEquals(drawn[1], pixels(draw(layOut(inflated, 0), 0)));
        inflated.setTypeface(Typeface.DEFAULT);
        GxTextView plain = new GxTextView(context());
        plain.setTextStyle(inflated.getTextStyle());
        assertArrayEquals(pixels(draw(layOut(plain, 0), 0)),
                pixels(draw(layOut(inflated, 0), 0)));
        TextStyle wrong = titleStyle("Title").toBuilder().setFont("@font/nowhere").build();
        for (TextStyle style : new TextStyle[] {wrong, wrong.toBuilder().clearEffects().build()}) {
            String message = assertThrows(IllegalArgumentException.class,
                    () -> new GxTextView(context()).setTextStyle(style)).getMessage();
            assertEquals("font: no resource \"@font/nowhere\"", message);
        }
    }

    private static void change(GxTextView view) {
        view.dispatchConfigurationChanged(
                new Configuration(context().getResources().getConfiguration()));
        layOut(view, 0);
    }

    /** As a view that was made on the new screen, but for what the app has set since. */
    @Test
    public void viewsFollowTheScreenThatTheyAreOn() {
        RuntimeEnvironment.setQualifiers("port-mdpi");
        GxTextView fromFile = (GxTextView) inflateTitles().getChildAt(0);
        GxTextView styled = new GxTextView(context());
        styled.setTextStyle(titleStyle("Text of the style"));
        styled.setText("Text of the app");
        GxTextView sized = new GxTextView(context());
        sized.setTextStyle(titleStyle("Title"));
        sized.setTextSize(TypedValue.COMPLEX_UNIT_PX, 33);
        for (String screen : new String[] {"port-xhdpi", "land-xxxhdpi", "port-mdpi"}) {
            RuntimeEnvironment.setQualifiers(screen);
            for (float fontScale : new float[] {1, 1.3f}) {
                RuntimeEnvironment.setFontScale(fontScale);
                change(fromFile);
                assertArrayEquals(screen + fontScale,
                        pixels(draw(titleInCode(screen.startsWith("land") ? 20 : 30), 0)),
                        pixels(draw(fromFile, 0)));
                change(styled);
                GxTextView made = new GxTextView(context());
                made.setTextStyle(titleStyle("Text of the app"));
                assertArrayEquals(screen + fontScale, pixels(draw(layOut(made, 0), 0)),
                        pixels(draw(styled, 0)));
                change(sized);
                assertEquals(33, sized.getTextSize(), 0);
                assertEquals(made.getPaddingLeft(), sized.getPaddingLeft());
            }
        }
    }

    private static TextStyle titleStyle(String text) {
        return new TextStyle.Builder().setUnit(TextStyle.Unit.DP).setText(text).setFont(LATIN)
                .setSize(20).setPadding(6).setColor(Color.BLACK)
                .addEffect(ShadowEffect.outer().build()).build();
    }

    /** Styles its view when it is made; what the user has typed comes back by itself. */
    public static class TitleActivity extends Activity {
        GxTextView view;

        @Override
        protected void onCreate(Bundle state) {
            super.onCreate(state);
            view = new GxTextView(this);
            view.setId(R.id.title);
            view.setFreezesText(true);
            view.setTextStyle(titleStyle("Title"));
            view.setIncludesEffectMargins(true);
            setContentView(view);
        }
    }

    @Test
    public void anActivityThatComesBackShowsTheSameFromTheCache() {
        for (String screen : SCREENS) {
            RuntimeEnvironment.setQualifiers("port-" + screen);
            try (ActivityController<TitleActivity> controller =
                    Robolectric.buildActivity(TitleActivity.class).setup()) {
                GxTextView first = controller.get().view;
                first.setText("Typed");
                int[] before = pixels(draw(layOut(first, 0), 0));

                RuntimeEnvironment.setQualifiers("+land");
                controller.configurationChange();
                GxTextView turned = controller.get().view;
                assertNotSame(first, turned);
                assertEquals("Typed", turned.getText().toString());
                assertArrayEquals(screen, before, pixels(draw(layOut(turned, 0), 0)));
                assertEquals("out of the cache", 0, turned.getRenderCount());

                RuntimeEnvironment.setFontScale(1.5f);
                controller.configurationChange();
                GxTextView larger = layOut(controller.get().view, 0);
                assertNotEquals(turned.getWidth(), larger.getWidth());
                draw(larger, 0);
                assertEquals(1, larger.getRenderCount());
                RuntimeEnvironment.setFontScale(1);
            }
        }
    }
}
