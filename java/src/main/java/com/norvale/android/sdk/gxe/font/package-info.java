/** Fonts for the texts of the whole process. */
package com.norvale.android.sdk.gxe.font;
