package com.norvale.android.sdk.gxe.sample;

import android.app.Activity;
import android.graphics.Color;
import android.os.Bundle;
import android.view.Gravity;
import android.view.View;
import android.widget.ImageView;
import android.widget.LinearLayout;
import android.widget.TextView;
import com.norvale.android.sdk.gxe.GxText;
import com.norvale.android.sdk.gxe.GxTextView;
import com.norvale.android.sdk.gxe.LinearGradientEffect;
import com.norvale.android.sdk.gxe.ShadowEffect;
import com.norvale.android.sdk.gxe.StrokeEffect;
import com.norvale.android.sdk.gxe.TextStyle;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.InputStream;

/**
 * The ways to use the library: a view with a style from code, one with a style from a file that was
 * tried with the gxtext program, one from a layout file, and a picture without a view of its own.
 */
public class SampleActivity extends Activity {
    @Override
    protected void onCreate(Bundle state) {
        super.onCreate(state);
        LinearLayout column = new LinearLayout(this);
        column.setOrientation(LinearLayout.VERTICAL);
        column.setGravity(Gravity.CENTER);
        column.setBackgroundColor(0xFF101020);
        column.addView(styledInCode());
        column.addView(styledByFile("styles/neon.json"));
        column.addView(getLayoutInflater().inflate(R.layout.title, column, false));
        column.addView(pictureAlone());
        setContentView(column);
    }

    private View styledInCode() {
        GxTextView view = new GxTextView(this);
        view.setTextStyle(new TextStyle.Builder()
                .setText("Golden hour")
                .setUnit(TextStyle.Unit.DP)
                .setSize(48)
                .setColor(Color.BLACK) // opaque: the alpha of a theme's colour fades all effects
                .setPadding(12)
                .setAlign(TextStyle.Align.CENTER)
                .addEffect(new LinearGradientEffect.Builder()
                        .setAngle(90)
                        .addStop(0xFF8A5A00, 0)
                        .addStop(0xFFFFD75E, 0.5f)
                        .addStop(0xFFFFF7D0, 1)
                        .build())
                .addEffect(new StrokeEffect.Builder().setSize(1.5f).setColor(0xFF4A2E00).build())
                .addEffect(ShadowEffect.outer().setAngle(120).setDistance(4).setSize(5).build())
                .build());
        return view;
    }

    private View styledByFile(String asset) {
        GxTextView view = new GxTextView(this);
        view.setText("Open late");
        view.setTextStyle(TextStyle.fromJson(readAsset(asset)));
        return view;
    }

    /** Draws once and keeps only the bitmap, as for a notification or a video frame. */
    private View pictureAlone() {
        TextView source = new TextView(this); // never shown: it only measures and breaks lines
        source.setText("Only a picture");
        source.setTextSize(24);
        source.setTextColor(Color.WHITE);
        source.measure(View.MeasureSpec.UNSPECIFIED, View.MeasureSpec.UNSPECIFIED);
        source.layout(0, 0, source.getMeasuredWidth(), source.getMeasuredHeight());
        ImageView picture = new ImageView(this);
        try (GxText text = new GxText()) {
            text.setStyle(new TextStyle.Builder().setUnit(TextStyle.Unit.DP)
                    .addEffect(ShadowEffect.outer().setColor(Color.CYAN).setDistance(2).build())
                    .build());
            text.setSource(source);
            picture.setImageBitmap(text.render().getBitmap());
        }
        return picture;
    }

    private String readAsset(String path) {
        try (InputStream in = getAssets().open(path)) {
            ByteArrayOutputStream text = new ByteArrayOutputStream();
            byte[] buffer = new byte[4096];
            for (int count = in.read(buffer); count >= 0; count = in.read(buffer)) {
                text.write(buffer, 0, count);
            }
            return text.toString("UTF-8");
        } catch (IOException e) {
            throw new IllegalStateException("asset " + path + " is missing", e);
        }
    }
}
