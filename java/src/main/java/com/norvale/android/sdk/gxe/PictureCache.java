package com.norvale.android.sdk.gxe;

import android.util.LruCache;
import java.lang.ref.WeakReference;
import java.util.Arrays;

/** Pictures of views that are the same in all that shows: for lists, and for views that come back. */
final class PictureCache {
    /** All that a picture depends on. */
    static final class Key {
        private final Object[] parts;
        private final int hash;

        Key(Object... parts) {
            this.parts = parts;
            hash = Arrays.deepHashCode(parts);
        }

        @Override
        public boolean equals(Object other) {
            return other instanceof Key && hash == ((Key) other).hash
                    && Arrays.deepEquals(parts, ((Key) other).parts);
        }

        @Override
        public int hashCode() {
            return hash;
        }
    }

    /** An object as itself, which a key does not keep. */
    private static final class Identity extends WeakReference<Object> {
        private final int hash;

        Identity(Object object) {
            super(object);
            hash = System.identityHashCode(object);
        }

        @Override
        public boolean equals(Object other) {
            return other == this || (other instanceof Identity && get() != null
                    && get() == ((Identity) other).get());
        }

        @Override
        public int hashCode() {
            return hash;
        }
    }

    /** Equal to another of the same object as long as that lives. */
    static Object identityOf(Object object) {
        return new Identity(object);
    }

    /** Bytes: an eighth of what the app may use, at most 32 MiB. */
    static final int CAPACITY =
            (int) Math.min(32L << 20, Runtime.getRuntime().maxMemory() / 8);

    private static final LruCache<Key, TextImage> CACHE = new LruCache<Key, TextImage>(CAPACITY) {
        @Override
        protected int sizeOf(Key key, TextImage image) {
            return Math.max(image.getBitmap().getByteCount(), 1);
        }
    };

    private PictureCache() {}

    static TextImage get(Key key) {
        return CACHE.get(key);
    }

    static void put(Key key, TextImage image) {
        CACHE.put(key, image);
    }

    static void clear() {
        CACHE.evictAll();
    }

    static int size() {
        return CACHE.size();
    }
}
