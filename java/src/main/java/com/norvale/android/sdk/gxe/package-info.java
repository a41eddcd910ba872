/**
 * Text with strokes, shadows, glows and gradients.
 *
 * <p>{@link com.norvale.android.sdk.gxe.GxTextView} is a text view that draws its text with the
 * effects of a {@link com.norvale.android.sdk.gxe.TextStyle}; {@link
 * com.norvale.android.sdk.gxe.GxText} gives the picture alone.
 */
package com.norvale.android.sdk.gxe;
