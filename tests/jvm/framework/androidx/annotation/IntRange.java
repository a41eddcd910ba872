package androidx.annotation;

import java.lang.annotation.Documented;
import java.lang.annotation.ElementType;
import java.lang.annotation.Retention;
import java.lang.annotation.RetentionPolicy;
import java.lang.annotation.Target;

/** Marks an integer within a closed interval. */
@Documented
@Retention(RetentionPolicy.CLASS)
@Target({ElementType.PARAMETER, ElementType.METHOD, ElementType.FIELD})
public @interface IntRange {
    /**
     * The least value.
     *
     * @return the lower end, itself included
     */
    long from() default Long.MIN_VALUE;

    /**
     * The greatest value.
     *
     * @return the upper end, itself included
     */
    long to() default Long.MAX_VALUE;
}
