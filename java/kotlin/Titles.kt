package com.norvale.android.sdk.gxe.sample

import android.content.Context
import android.graphics.Bitmap
import com.norvale.android.sdk.gxe.BevelEffect
import com.norvale.android.sdk.gxe.GxText
import com.norvale.android.sdk.gxe.GxTextView
import com.norvale.android.sdk.gxe.StrokeEffect
import com.norvale.android.sdk.gxe.StyleException
import com.norvale.android.sdk.gxe.TextStyle

/** The SDK as Kotlin sees it: what may be null is so for the compiler. */
fun title(context: Context, text: String): GxTextView = GxTextView(context).apply {
    textStyle = TextStyle.Builder()
        .setText(text)
        .setUnit(TextStyle.Unit.DP)
        .setSize(32f)
        .addEffect(StrokeEffect.Builder().setSize(3f).build())
        .addEffect(BevelEffect.Builder().setKind(BevelEffect.Kind.INSIDE).build())
        .build()
}

fun picture(view: GxTextView): Bitmap = GxText().use { text ->
    text.setStyle(view.textStyle)
    text.setSource(view)
    text.render().bitmap
}

fun mistakes(json: String): List<String> = try {
    TextStyle.fromJson(json)
    emptyList()
} catch (e: StyleException) {
    e.mistakes.map { "${it.path}: ${it.allowed ?: it.reason}" }
}

fun size(style: TextStyle): Float = style.size ?: 64f
