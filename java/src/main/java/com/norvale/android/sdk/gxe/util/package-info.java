/** The native library: loading it, and what its error codes mean. */
package com.norvale.android.sdk.gxe.util;
