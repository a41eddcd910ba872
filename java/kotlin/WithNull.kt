package com.norvale.android.sdk.gxe.sample

import com.norvale.android.sdk.gxe.GxTextView

/** Does not compile. */
fun refused(view: GxTextView) {
    view.setTextStyle(null)
}
