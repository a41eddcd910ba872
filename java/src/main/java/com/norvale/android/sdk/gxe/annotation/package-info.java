/**
 * Annotations that say what a value is. They live in the sources and the documentation only, so
 * that an app needs no library for them.
 */
package com.norvale.android.sdk.gxe.annotation;
